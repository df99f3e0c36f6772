#pragma once
// The process's log file, and the lines that wait for it while another process has it.
//
// Why: a line is handed to the system before Write returns, so that it survives a crash; but somebody may hold the
// file's lock, for one a debugger that has stopped another instance, and the caller is often the UI thread. Where the
// lock is not free at once the line waits in a queue, and a thread of this class waits for the lock, half a second at
// most: then what waits is written without it rather than lost. The thread starts with the first line that waits, and
// lives until the process ends; what waits then is written by FlushAtExit.
// Threads: any; never destroyed once it is open. Nothing throws but the constructor and Write (std::bad_alloc).
#include <windows.h>

#include <deque>
#include <string>

#include "suite/common/SharedAppendFile.h"

namespace suite {

class LogFile {
  public:
    explicit LogFile(std::wstring path);
    LogFile(const LogFile&) = delete;
    LogFile& operator=(const LogFile&) = delete;

    const std::wstring& Path() const { return file_.Path(); }
    // False when the file cannot be written. Never waits for a lock that somebody keeps.
    [[nodiscard]] bool Open() { return file_.Open(); }
    // Lines that do not find room in the queue, of 4096 lines, are lost.
    void Write(std::string line);
    // Waits until nothing waits to be written; two seconds at most.
    void WriteOut();
    // REQUIRES: called from DllMain while the process ends.
    void FlushAtExit();

  private:
    static DWORD WINAPI ThreadEntry(void* file);
    void WriteForever();
    bool StartThread();
    std::string Waiting(std::size_t& lines) const;

    SharedAppendFile file_;
    CONDITION_VARIABLE wake_ = CONDITION_VARIABLE_INIT;
    CONDITION_VARIABLE written_ = CONDITION_VARIABLE_INIT;

    SRWLOCK lock_ = SRWLOCK_INIT;
    // Guarded by lock_. Lines stay queued until they are written.
    std::deque<std::string> queue_;
    bool threadStarted_ = false;
};

}  // namespace suite
