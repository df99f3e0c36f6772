// What a round of watching asks of the system, step by step, each of them answered by the test.
#include "DuiLib/UIMainQueue.h"
#include "service/KindNotifier.h"
#include "suite/common/Utf8.h"
#include "tests/support/ImportHook.h"
#include "tests/windows/service/ServiceTest.h"

namespace {

using GlobalUtils::MessageBoxKind;
using harness::ImportHook;
using testing::ElementsAre;

const HANDLE kEvent = reinterpret_cast<HANDLE>(0x1111);
const HKEY kKey = reinterpret_cast<HKEY>(0x2222);

// The answers, and the calls so far.
struct System {
    HANDLE event = kEvent;
    LSTATUS opened = ERROR_SUCCESS;
    LSTATUS armed = ERROR_SUCCESS;
    DWORD waited = WAIT_OBJECT_0;
    std::vector<std::string> calls;
};
System* g_system = nullptr;

void Note(const std::string& call) {
    g_system->calls.push_back(call);
}

HANDLE WINAPI MakeEvent(LPSECURITY_ATTRIBUTES attributes, BOOL manual, BOOL signalled, LPCWSTR name) {
    Note(std::string(attributes ? "secured " : "") + (manual ? "manual " : "automatic ") +
         (signalled ? "signalled " : "") + "event " + suite::ToUtf8(name));
    return g_system->event;
}
LSTATUS WINAPI OpenKey(HKEY root, LPCWSTR path, DWORD options, REGSAM access, PHKEY key) {
    Note("open " + suite::ToUtf8(path) + " for " + std::to_string(access) + (root == HKEY_CURRENT_USER ? "" : "?") +
         (options == 0 ? "" : "?"));
    *key = kKey;
    return g_system->opened;
}
LSTATUS WINAPI Arm(HKEY key, BOOL tree, DWORD filter, HANDLE event, BOOL asynchronous) {
    Note(std::string("arm ") + (tree ? "tree " : "") + std::to_string(filter) +
         (asynchronous ? " asynchronously" : "") + (key == kKey && event == kEvent ? "" : "?"));
    return g_system->armed;
}
DWORD WINAPI Wait(HANDLE handle, DWORD timeMs) {
    Note(std::string("wait") + (handle == kEvent && timeMs == INFINITE ? "" : "?"));
    return g_system->waited;
}
BOOL WINAPI Close(HANDLE handle) {
    Note(handle == kEvent ? "close event" : handle == INVALID_HANDLE_VALUE ? "close invalid" : "close?");
    return TRUE;
}
LSTATUS WINAPI CloseKey(HKEY key) {
    Note(key == kKey ? "close key" : "close key?");
    return ERROR_SUCCESS;
}

class WatchCallsTest : public ServiceTest {
  protected:
    void SetUp() override {
        ServiceTest::SetUp();
        DuiLib::UIMainQueue::getInstance()->bindToCurrentThread();
        MakeEmptyKey();
    }

    // One round; what it asked is in system_.calls.
    bool Round() {
        g_system = &system_;
        const ImportHook hooks[] = {{nullptr, "CreateEventW", &MakeEvent},      {nullptr, "RegOpenKeyExW", &OpenKey},
                                    {nullptr, "RegNotifyChangeKeyValue", &Arm}, {nullptr, "WaitForSingleObject", &Wait},
                                    {nullptr, "CloseHandle", &Close},           {nullptr, "RegCloseKey", &CloseKey}};
        return HomeService::WatchSettingsOnce([this] { ++refreshes_; });
    }
    // Refreshes so far, with what waits in the queue.
    int Refreshes() {
        bool later = false;
        DuiLib::UIMainQueue::getInstance()->dispatch([&later] { later = true; });
        EXPECT_TRUE(PumpUntil([&later] { return later; }));
        return refreshes_;
    }

    System system_;

  private:
    int refreshes_ = 0;
};

TEST_F(WatchCallsTest, ARoundInItsOrder) {
    EXPECT_TRUE(Round());
    EXPECT_THAT(system_.calls, ElementsAre("automatic signalled event RegEditNotifyChanged",
                                           "open SOFTWARE\\Velmora\\Quillon\\LumiCamera for 16",
                                           "arm tree 7 asynchronously", "wait", "close event", "close key"));
    EXPECT_EQ(Refreshes(), 1);
}

TEST_F(WatchCallsTest, TheRefreshIsQueuedBeforeAFailedAlgorithmIsTold) {
    Write(L"init_algorithm", 0);
    int queuedBefore = -1;
    auto& hub = KindNotifier<MessageBoxKind>::GetInstance();
    const auto id = hub.Subscribe(GlobalUtils::kMessageBoxChannel, [&](MessageBoxKind& kind) {
        EXPECT_EQ(kind, MessageBoxKind(9));
        queuedBefore = Refreshes();
    });
    EXPECT_TRUE(Round());
    hub.Unsubscribe(GlobalUtils::kMessageBoxChannel, id);
    EXPECT_EQ(queuedBefore, 1);
}

TEST_F(WatchCallsTest, WithoutAKeyNothingIsArmed) {
    system_.opened = ERROR_FILE_NOT_FOUND;
    EXPECT_FALSE(Round());
    EXPECT_THAT(system_.calls, ElementsAre(testing::_, testing::_, "close event"));
    EXPECT_EQ(Refreshes(), 0);
}

TEST_F(WatchCallsTest, WhatCannotBeArmedIsNotWaitedFor) {
    system_.armed = ERROR_INVALID_PARAMETER;
    EXPECT_FALSE(Round());
    EXPECT_THAT(system_.calls,
                ElementsAre(testing::_, testing::_, "arm tree 7 asynchronously", "close event", "close key"));
    EXPECT_EQ(Refreshes(), 0);
}

TEST_F(WatchCallsTest, AWaitThatFailsTellsNothing) {
    Write(L"init_algorithm", 0);
    system_.waited = WAIT_FAILED;
    EXPECT_FALSE(Round());
    EXPECT_THAT(system_.calls, testing::IsSupersetOf({"wait", "close event", "close key"}));
    EXPECT_EQ(Refreshes(), 0);
}

TEST_F(WatchCallsTest, AnyOtherEndOfTheWaitCounts) {
    system_.waited = WAIT_ABANDONED;
    EXPECT_TRUE(Round());
    EXPECT_EQ(Refreshes(), 1);
}

TEST_F(WatchCallsTest, WithAnInvalidEventTheRoundEnds) {
    system_.event = INVALID_HANDLE_VALUE;
    EXPECT_FALSE(Round());
    EXPECT_THAT(system_.calls, ElementsAre("automatic signalled event RegEditNotifyChanged", "close invalid"));
}

}  // namespace
