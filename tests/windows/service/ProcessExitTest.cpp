// The process-wide model and the end of its process.
#include <fstream>

#include "suite/common/Handle.h"
#include "tests/windows/service/ServiceTest.h"

namespace {

constexpr DWORD kDidNotEnd = 0xFFFFFFFF;

class ProcessExitTest : public ServiceTest {
  protected:
    // The helper's exit code.
    static DWORD RunHelper(const std::wstring& arguments) {
        std::wstring program(MAX_PATH, L'\0');
        program.resize(GetModuleFileNameW(nullptr, program.data(), MAX_PATH));
        std::wstring command = L"\"" +
                               (std::filesystem::path(program).parent_path() / L"service_helper.exe").wstring() +
                               L"\" " + arguments;
        STARTUPINFOW startup{};
        startup.cb = sizeof(startup);
        PROCESS_INFORMATION info{};
        if (!CreateProcessW(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &info)) {
            ADD_FAILURE() << "the helper cannot be started: " << GetLastError();
            return kDidNotEnd;
        }
        const suite::Handle process(info.hProcess);
        const suite::Handle thread(info.hThread);
        DWORD code = kDidNotEnd;
        if (WaitForSingleObject(process.Get(), static_cast<DWORD>(kDeadline.count())) == WAIT_OBJECT_0) {
            GetExitCodeProcess(process.Get(), &code);
        } else {
            TerminateProcess(process.Get(), 1);
            WaitForSingleObject(process.Get(), INFINITE);
        }
        return code;
    }
    static std::filesystem::path ReportFolder() { return Folder() / L"Velmora" / L"Quillon" / L"Report"; }
};

TEST_F(ProcessExitTest, ThereIsOneModelAndItEnds) {
    EXPECT_EQ(RunHelper(L""), 0u);
}

TEST_F(ProcessExitTest, EndsWithReportsUnderWay) {
    for (int i = 0; i < 5; ++i) {
        EXPECT_EQ(RunHelper(L"drag"), 0u);
    }
}

TEST_F(ProcessExitTest, WhatWasSaidLastReachesTheService) {
    PipeServer server;
    StartServer(server);
    EXPECT_EQ(RunHelper(L"switch"), 0u);
    ASSERT_TRUE(WaitForModel(server));
    const auto state = NextMessage(server);
    const auto ping = NextMessage(server);
    ASSERT_TRUE(state && ping);
    EXPECT_EQ(state->slot[2], 0x4B273C);
    EXPECT_EQ(ping->slot[2], 0x4B273B);
}

TEST_F(ProcessExitTest, EndsWhileTheServiceReadsNothing) {
    PipeServer server;
    ASSERT_TRUE(server.Start(L"\\\\.\\Pipe\\iNotoraAssistant", {.neverRead = true}));
    EXPECT_EQ(RunHelper(L"switch"), 0u);
}

TEST_F(ProcessExitTest, EndsWhileSomebodyHoldsTheReports) {
    std::filesystem::create_directories(ReportFolder());
    const std::filesystem::path spool = ReportFolder() / L"events.jsonl";
    const suite::Handle file(
        CreateFileW(spool.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_ALWAYS, 0, nullptr));
    ASSERT_TRUE(file);
    EXPECT_EQ(RunHelper(L"drag"), 0u);
    EXPECT_EQ(RunHelper(L"switch"), 0u);
}

}  // namespace
