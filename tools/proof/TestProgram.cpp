#include "tools/proof/TestProgram.h"

#include <array>

#include "suite/common/Handle.h"
#include "suite/common/Utf8.h"

namespace proof {

namespace {

namespace fs = std::filesystem;

// The test's variables, while it lives.
class Variables {
  public:
    explicit Variables(const std::vector<std::string>& entries) {
        for (const std::string& entry : entries) {
            const std::wstring text = suite::FromUtf8(entry);
            const std::size_t end = text.find(L'=');
            names_.push_back(text.substr(0, end));
            SetEnvironmentVariableW(names_.back().c_str(), text.c_str() + end + 1);
        }
    }
    ~Variables() {
        for (const std::wstring& name : names_) {
            SetEnvironmentVariableW(name.c_str(), nullptr);
        }
    }
    Variables(const Variables&) = delete;
    Variables& operator=(const Variables&) = delete;

  private:
    std::vector<std::wstring> names_;
};

// Whatever runs in it ends with the handle, at the latest.
suite::Handle MakeJob() {
    suite::Handle job(CreateJobObjectW(nullptr, nullptr));
    JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits{};
    limits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE;
    SetInformationJobObject(job.Get(), JobObjectExtendedLimitInformation, &limits, sizeof limits);
    return job;
}

suite::Handle OpenForChild(const wchar_t* path, DWORD access, DWORD disposition) {
    SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
    return suite::Handle(CreateFileW(path, access, FILE_SHARE_READ | FILE_SHARE_WRITE, &inherited, disposition,
                                     FILE_ATTRIBUTE_NORMAL, nullptr));
}

struct Started {
    suite::Handle process;
    suite::Handle thread;
    DWORD error = ERROR_SUCCESS;
};

// The process is suspended.
Started Start(const ListedTest& test, const fs::path& root, HANDLE input, HANDLE output) {
    const std::wstring program = (root / suite::FromUtf8(test.program)).wstring();
    const std::wstring folder = (root / suite::FromUtf8(test.folder)).wstring();
    std::wstring command = L"\"" + program + L"\" " + suite::FromUtf8(test.arguments);
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdInput = input;
    startup.hStdOutput = output;
    startup.hStdError = output;
    PROCESS_INFORMATION process{};
    const Variables variables(test.environment);
    if (!CreateProcessW(program.c_str(), command.data(), nullptr, nullptr, TRUE, CREATE_NO_WINDOW | CREATE_SUSPENDED,
                        nullptr, folder.c_str(), &startup, &process)) {
        return {{}, {}, GetLastError()};
    }
    return {suite::Handle(process.hProcess), suite::Handle(process.hThread)};
}

}  // namespace

Ending RunProgram(const ListedTest& test, const fs::path& root, const fs::path& output, HANDLE stop) {
    const suite::Handle input = OpenForChild(L"NUL", GENERIC_READ, OPEN_EXISTING);
    const suite::Handle file = OpenForChild(output.c_str(), GENERIC_WRITE, CREATE_ALWAYS);
    const Started started = Start(test, root, input.Get(), file.Get());
    const suite::Handle& process = started.process;
    if (!process) {
        return {Ending::How::kNotStarted, started.error};
    }
    const suite::Handle job = MakeJob();
    AssignProcessToJobObject(job.Get(), process.Get());
    ResumeThread(started.thread.Get());

    constexpr DWORD kMsPerSecond = 1000;
    constexpr DWORD kMostMsToEnd = 10'000;  // a driver may hold it
    const std::array<HANDLE, 2> events{process.Get(), stop};
    const DWORD which = WaitForMultipleObjects(static_cast<DWORD>(events.size()), events.data(), FALSE,
                                               static_cast<DWORD>(test.seconds) * kMsPerSecond);
    Ending ending;
    if (which == WAIT_OBJECT_0) {
        GetExitCodeProcess(process.Get(), &ending.code);
    } else {
        ending.how = which == WAIT_TIMEOUT ? Ending::How::kTooLong : Ending::How::kStopped;
    }
    TerminateJobObject(job.Get(), 1);
    TerminateProcess(process.Get(), 1);
    WaitForSingleObject(process.Get(), kMostMsToEnd);
    return ending;
}

}  // namespace proof
