#include "tests/support/ChildProcess.h"

#include <gtest/gtest.h>

#include "tests/support/Harness.h"

namespace harness {

ChildProcess::ChildProcess(const std::wstring& program, const std::wstring& arguments,
                           const std::filesystem::path& output)
    : program_(program) {
    SECURITY_ATTRIBUTES inherited{sizeof(inherited), nullptr, TRUE};
    // The system may let go of an ended program's output a moment later, so everything is shared.
    constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    const suite::Handle file(output.empty() ? nullptr
                                            : CreateFileW(output.c_str(), GENERIC_WRITE, kShareAll, &inherited,
                                                          CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
    EXPECT_TRUE(output.empty() || file) << output << " cannot be written: " << GetLastError();
    const std::wstring path = ProgramFolder() + program;
    std::wstring commandLine = L"\"" + path + L"\" " + arguments;
    STARTUPINFOW startup{};
    startup.cb = sizeof(startup);
    if (file) {
        startup.dwFlags = STARTF_USESTDHANDLES;
        startup.hStdOutput = file.Get();
        startup.hStdError = file.Get();
    }
    PROCESS_INFORMATION process{};
    if (!CreateProcessW(path.c_str(), commandLine.data(), nullptr, nullptr, file ? TRUE : FALSE,
                        file ? CREATE_NO_WINDOW : 0, nullptr, nullptr, &startup, &process)) {
        ADD_FAILURE() << std::filesystem::path(program) << " does not start: " << GetLastError();
        return;
    }
    CloseHandle(process.hThread);
    process_ = suite::Handle(process.hProcess);
}

ChildProcess& ChildProcess::operator=(ChildProcess&& other) noexcept {
    Kill();
    program_ = std::move(other.program_);
    process_ = std::move(other.process_);
    return *this;
}

DWORD ChildProcess::WaitForEnd(std::chrono::milliseconds atMost) {
    DWORD code = kDidNotEnd;
    if (!process_ || WaitForSingleObject(process_.Get(), static_cast<DWORD>(atMost.count())) != WAIT_OBJECT_0) {
        ADD_FAILURE() << std::filesystem::path(program_) << " does not end";
        Kill();
        return kDidNotEnd;
    }
    GetExitCodeProcess(process_.Get(), &code);
    return code;
}

void ChildProcess::Kill() {
    if (Runs()) {
        TerminateProcess(process_.Get(), 99);
        WaitForSingleObject(process_.Get(), static_cast<DWORD>(kPatience.count()));
    }
}

}  // namespace harness
