// The process-wide model and the end of its process.
#include <fstream>

#include "suite/common/Handle.h"
#include "tests/windows/service/ServiceTest.h"

namespace {

class ProcessExitTest : public ServiceTest {
  protected:
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
    EXPECT_EQ(state->slot[2], harness::Protocol::kSwitchStateCode);
    EXPECT_EQ(ping->slot[2], harness::Protocol::kSettingsChangedCode);
}

TEST_F(ProcessExitTest, EndsWhileTheServiceReadsNothing) {
    PipeServer server;
    ASSERT_TRUE(server.Start(harness::Protocol::kPipeName, {.neverRead = true}));
    EXPECT_EQ(RunHelper(L"switch"), 0u);
}

TEST_F(ProcessExitTest, EndsWhileSomebodyHoldsTheReports) {
    Expect("usage events are lost: the spool file is full or cannot be written(Spool::WriteForever)");
    Expect("ipcclient send message:1 error(HomeService::SendSignal)");
    std::filesystem::create_directories(ReportFolder());
    const std::filesystem::path spool = ReportFolder() / L"events.jsonl";
    const suite::Handle file(
        CreateFileW(spool.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_ALWAYS, 0, nullptr));
    ASSERT_TRUE(file);
    EXPECT_EQ(RunHelper(L"drag"), 0u);
    EXPECT_EQ(RunHelper(L"switch"), 0u);
}

}  // namespace
