#include "tests/windows/service/ServiceTest.h"

void ServiceTest::SetUp() {
    registry_.emplace();
}

void ServiceTest::TearDown() {
    registry_.reset();
}

int ServiceTest::FailedPings() {
    return LogLines("ipcclient send message:1 error(HomeService::SendSignal)");
}

void ServiceTest::StartServer(PipeServer& server) {
    ASSERT_TRUE(server.Start(harness::Protocol::kPipeName)) << "error " << GetLastError();
}

bool ServiceTest::WaitForModel(PipeServer& server) {
    const auto hello = server.WaitFor(ServerEvent::Kind::kHello, kDeadline);
    return hello && hello->frame.clientId == harness::Protocol::kOwnClientId;
}

std::optional<PipeFrame::Frame> ServiceTest::NextMessage(PipeServer& server) {
    auto event = server.WaitFor(ServerEvent::Kind::kMessage, kDeadline);
    return event ? std::optional(std::move(event->frame)) : std::nullopt;
}
