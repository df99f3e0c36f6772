// The second process of the suite libraries' tests. Commands:
//   log <name> <threads> <lines> <length>   each thread logs so many lines "<name>-<thread>-<line> xxx" of that length
//   early                                   logs before, at and after InitProcessLogger, and after a second call
//   forever                                 logs until it is ended
// Exit code 0 when done, 1 when the logger cannot open its file, 2 for an unknown command.
#include <windows.h>

#include <string>
#include <thread>
#include <vector>

#include "suite/logger/QxLogger.h"

namespace {

int LogMany(const std::wstring& name, int threads, int lines, std::size_t length) {
    if (!QxLogger::GetInstance()->InitProcessLogger()) {
        LogLine(4, L"LogMany", L"goes nowhere, and harms nothing");
        return 1;
    }
    std::vector<std::thread> workers;
    for (int thread = 0; thread < threads; ++thread) {
        workers.emplace_back([=] {
            for (int line = 0; line < lines; ++line) {
                LogLine(3, L"LogMany", name, L"-", thread, L"-", line, L" ", std::wstring(length, L'x'));
            }
        });
    }
    for (std::thread& worker : workers) {
        worker.join();
    }
    return 0;
}

int LogEarly() {
    LogLine(3, L"LogEarly", L"first");
    LogLine(4, L"LogEarly", L"second");
    const bool noPath = QxLogger::GetInstance()->FilePath().empty();
    const bool opened = QxLogger::GetInstance()->InitProcessLogger();
    LogLine(3, L"LogEarly", L"third");
    const bool again = QxLogger::GetInstance()->InitProcessLogger();
    LogLine(3, L"LogEarly", L"fourth");
    return noPath && opened && again ? 0 : 1;
}

int LogForever() {
    QxLogger::GetInstance()->InitProcessLogger();
    for (int line = 0;; ++line) {
        LogLine(3, L"LogForever", line);
    }
}

}  // namespace

int wmain(int argc, wchar_t** argv) {
    const std::vector<std::wstring> arguments(argv + 1, argv + argc);
    if (arguments.size() == 5 && arguments[0] == L"log") {
        return LogMany(arguments[1], std::stoi(arguments[2]), std::stoi(arguments[3]), std::stoul(arguments[4]));
    }
    if (arguments.size() == 1 && arguments[0] == L"early") {
        return LogEarly();
    }
    if (arguments.size() == 1 && arguments[0] == L"forever") {
        return LogForever();
    }
    return 2;
}
