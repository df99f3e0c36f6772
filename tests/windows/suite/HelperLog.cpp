#include <windows.h>

#include <atomic>
#include <thread>

#include "suite/logger/QxLogger.h"
#include "tests/windows/suite/HelperCommands.h"

int LogMany(const Arguments& arguments) {
    const std::wstring name = arguments.at(1);
    const int lines = std::stoi(arguments.at(3));
    const std::wstring filling(std::stoul(arguments.at(4)), L'x');
    if (!QxLogger::GetInstance()->InitProcessLogger()) {
        LogLine(4, L"LogMany", L"goes nowhere, and harms nothing");
        return 1;
    }
    std::atomic<bool> lastErrorKept{true};
    std::vector<std::thread> workers;
    for (int thread = 0; thread < std::stoi(arguments.at(2)); ++thread) {
        workers.emplace_back([&, thread] {
            for (int line = 0; line < lines; ++line) {
                std::wostringstream stream;
                stream << name << L"-" << thread << L"-" << line << L" " << filling << L"(LogMany)";
                SetLastError(4711);
                QxLogger::Log(3, stream);
                if (GetLastError() != 4711) {
                    lastErrorKept = false;
                }
            }
        });
    }
    for (std::thread& worker : workers) {
        worker.join();
    }
    return lastErrorKept ? 0 : 1;
}

int LogEarly(const Arguments&) {
    LogLine(3, L"LogEarly", L"first");
    LogLine(4, L"LogEarly", L"second");
    const bool noPath = QxLogger::GetInstance()->FilePath().empty();
    const bool opened = QxLogger::GetInstance()->InitProcessLogger();
    LogLine(3, L"LogEarly", L"third");
    const bool again = QxLogger::GetInstance()->InitProcessLogger();
    LogLine(3, L"LogEarly", L"fourth");
    return noPath && opened && again ? 0 : 1;
}

int LogForever(const Arguments& arguments) {
    const DWORD pauseMs = arguments.size() > 1 ? std::stoul(arguments[1]) : 0;
    QxLogger::GetInstance()->InitProcessLogger();
    for (int line = 0;; ++line) {
        LogLine(3, L"LogForever", line);
        if (pauseMs > 0) {
            Sleep(pauseMs);
        }
    }
}
