#include "tests/support/FakePageHost.h"

#include "service/KindNotifier.h"
#include "tests/support/Protocol.h"

FakePageHost::FakePageHost() {
    SetCurrent(this);
    Create(nullptr, L"host", WS_POPUP, 0, 100, 100);
    ShowWindow();
}

FakePageHost::~FakePageHost() {
    SetCurrent(nullptr);
}

void FakePageHost::ShowMessage(GlobalUtils::MessageBoxKind kind) {
    const std::scoped_lock lock(mutex_);
    messages_.push_back(static_cast<int>(kind));
}

HintWindow* FakePageHost::GetHint(Hint hint) {
    if (!hasHints)
        return nullptr;
    return hint == Hint::kOption ? &optionHint : &deleteHint;
}

std::vector<int> FakePageHost::Messages() {
    const std::scoped_lock lock(mutex_);
    return messages_;
}

LRESULT FakePageHost::HandleMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == harness::Protocol::kCaptureFailed) {
        KindNotifier<GlobalUtils::OnListenKindInfo>::GetInstance().Publish(
            GlobalUtils::kOnListenChannel, GlobalUtils::OnListenKindInfo{wParam, lParam});
    }
    return WindowImplBase::HandleMessage(message, wParam, lParam);
}
