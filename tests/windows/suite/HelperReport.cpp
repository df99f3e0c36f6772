#include <windows.h>

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <fstream>
#include <thread>

#include "suite/common/Handle.h"
#include "suite/common/LocalFolder.h"
#include "suite/common/SharedAppendFile.h"
#include "suite/common/Utf8.h"
#include "suite/report/EventDataReport.h"
#include "suite/report/TallyView.h"
#include "tests/support/ImportHook.h"
#include "tests/support/Wait.h"
#include "tests/windows/suite/HelperCommands.h"
#include "tests/windows/support/KeptWriter.h"
#include "tests/windows/support/LockHolder.h"

namespace fs = std::filesystem;

namespace {

const fs::path& SpoolPath() {
    static const fs::path path =
        fs::path(suite::LocalDataFolder()) / L"Velmora" / L"Quillon" / L"Report" / L"events.jsonl";
    return path;
}

bool Send(const std::string& id, const std::string& text) {
    std::string message;
    return EventDataReport::Instance().GetMsg(message, id, text) && EventDataReport::Instance().SendMsg(message);
}

long CountLinesWith(const std::string& text) {
    std::ifstream file(SpoolPath());
    long count = 0;
    for (std::string line; std::getline(file, line);) {
        count += line.find(text) != std::string::npos;
    }
    return count;
}

HANDLE WINAPI NoThread(LPSECURITY_ATTRIBUTES, SIZE_T, LPTHREAD_START_ROUTINE, LPVOID, DWORD, LPDWORD) {
    SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return nullptr;
}

BOOL WINAPI NoModule(DWORD, LPCWSTR, HMODULE*) {
    SetLastError(ERROR_MOD_NOT_FOUND);
    return FALSE;
}

}  // namespace

int Report(const Arguments&) {
    std::string untouched = "before";
    if (EventDataReport::Instance().GetMsg(untouched, "", "text") || untouched != "before") {
        return 1;
    }
    if (!Send("631770001", "open camera") || !Send("7", "a\"b\\c\nd")) {
        return 1;
    }
    TallyEvent event(992612801);
    event.PutInt("STATUS", 1);
    event.PutInt("SMOOTH", -5);
    event.PutInt("THIN", 0);
    return TallyView::Report(event) ? 0 : 1;
}

int ReportMany(const Arguments& arguments) {
    const int threads = std::stoi(arguments.at(1));
    const int events = std::stoi(arguments.at(2));
    const std::string name = "p" + std::to_string(GetCurrentProcessId()) + "-";
    std::atomic<bool> good{true};
    std::vector<std::thread> workers;
    for (int thread = 0; thread < threads; ++thread) {
        workers.emplace_back([&, thread] {
            for (int event = 0; event < events; ++event) {
                if (!Send("1", name + std::to_string(thread) + "-" + std::to_string(event))) {
                    good = false;
                }
            }
        });
    }
    for (std::thread& worker : workers) {
        worker.join();
    }
    if (arguments.size() == 4 && !harness::WaitUntil([&] { return CountLinesWith(name) == threads * events; })) {
        return 1;
    }
    return good ? 0 : 1;
}

int ReportUploader(const Arguments&) {
    // Nobody else may have the file open: the writer has to let go of it while it has nothing to write.
    const auto isFree = [] {
        return static_cast<bool>(
            suite::Handle(CreateFileW(SpoolPath().c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr)));
    };
    const auto arrived = [] { return CountLinesWith("\"event\"") == 1; };
    if (!Send("1", "before") || !harness::WaitUntil(arrived) || !harness::WaitUntil(isFree)) {
        return 1;
    }
    if (!DeleteFileW(SpoolPath().c_str())) {
        return 1;
    }
    return Send("1", "after") && harness::WaitUntil(arrived) ? 0 : 1;
}

int ReportFull(const Arguments&) {
    const suite::Handle mutex(
        CreateMutexW(nullptr, TRUE, suite::SharedAppendFile::MutexName(SpoolPath().wstring()).c_str()));
    int accepted = 0;
    while (accepted < 10'000 && Send("1", "x")) {
        ++accepted;
    }
    return mutex && accepted >= 4096 && accepted < 10'000 ? 0 : 1;
}

int ReportLimits(const Arguments&) {
    constexpr std::size_t kLongest = 8 * 1024;
    EventDataReport& report = EventDataReport::Instance();
    const HMODULE library = GetModuleHandleW(L"QxReport.dll");
    {
        const harness::ImportHook hook(library, "CreateThread", &NoThread);
        if (report.SendMsg("nobody writes it")) {
            return 1;
        }
    }
    {
        const harness::ImportHook hook(library, "GetModuleHandleExW", &NoModule);
        if (report.SendMsg("the library could go before its thread")) {
            return 1;
        }
    }
    const bool longestTaken = report.SendMsg(std::string(kLongest, 'x'));
    const bool tooLongTaken = report.SendMsg(std::string(kLongest + 1, 'y'));
    return longestTaken && !tooLongTaken ? 0 : 1;
}

// The system ends a process like this at the end of a session: nothing is written by an exit.
int ReportWriteOut(const Arguments&) {
    const LockHolder holder(SpoolPath());
    Send("1", "last");
    EventDataReport::WriteOut();
    TerminateProcess(GetCurrentProcess(), 0);
    return 1;
}

int ReportWriteOutInVain(const Arguments&) {
    const KeptWriter writer(L"QxReport.dll");
    Send("1", "last");
    EventDataReport::WriteOut();
    TerminateProcess(GetCurrentProcess(), writer.Sleeps() == std::vector<DWORD>{2000} ? 0 : 1);
    return 1;
}

int ReceiveUrl(const Arguments& arguments) {
    const fs::path target = fs::path(suite::LocalDataFolder()) / L"url.txt";
    const fs::path draft = fs::path(suite::LocalDataFolder()) / L"url.tmp";
    std::ofstream(draft, std::ios::binary) << suite::ToUtf8(arguments.at(1));
    fs::rename(draft, target);
    return 0;
}
