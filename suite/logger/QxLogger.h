#pragma once
// The suite's process logger: one rotating text file per program below the user's local application data folder.
//
// Why: every failure of the program ends in one line here, and nowhere else. A line is
//     2026-11-21 10:15:30.123 [L4] [1234] message(Class::Function)
// that is local time, level, thread id and the text as it was streamed. Every line is handed to the system before Log
// returns, so it survives a crash of the program. Several processes of one name may log at once, and the file may be
// read, renamed or deleted meanwhile.
// Threads: every operation may be called from any thread. Nothing throws.
#include <sstream>
#include <string>

#include "suite/common/Export.h"

// The levels in use; the numbers belong to the suite.
namespace LogLevel {

inline constexpr int kInfo = 3;
inline constexpr int kError = 4;

}  // namespace LogLevel

class SUITE_LOGGER_API QxLogger {
  public:
    // The process-wide logger. Lines logged before InitProcessLogger are kept, and written when it runs.
    static QxLogger* GetInstance();

    // Opens %LOCALAPPDATA%\Velmora\Quillon\Logs\<program name>.log; at 2 MiB it becomes <program name>.1.log, and four
    // of those are kept. False when no file can be written; logging is then silent. A second call does nothing and
    // answers as the first.
    bool InitProcessLogger();

    // Writes one line; line breaks within the text become blanks, and a text of more than 8192 characters is cut. The
    // thread's last error stays as it was.
    static void Log(int level, const std::wostringstream& stream);

    // The file that is written to; empty before InitProcessLogger or when it failed.
    std::wstring FilePath() const;

    QxLogger(const QxLogger&) = delete;
    QxLogger& operator=(const QxLogger&) = delete;

  private:
    QxLogger() = default;
    ~QxLogger() = default;
};

// LogLine(LogLevel::kError, L"PxMainWnd::SetValuePath", L"Path append res fail!") and, with more parts, a streamed
// line: LogLine(LogLevel::kInfo, L"PixoraMutex::IsAlreadyRunning", L"CloseHandle error: ", GetLastError()).
template <typename... Parts>
void LogLine(int level, const wchar_t* function, const Parts&... parts) {
    try {
        std::wostringstream stream;
        (stream << ... << parts) << L'(' << function << L')';
        QxLogger::Log(level, stream);
    } catch (...) {
        // No memory for the line: there is nowhere else to tell.
    }
}
