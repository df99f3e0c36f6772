#include "service/CallbackSlot.h"

#include <gtest/gtest.h>

#include <future>
#include <string>
#include <thread>

namespace {

TEST(CallbackSlotTest, IsEmptyAtFirstAndCallingItDoesNothing) {
    const CallbackSlot<void(int)> slot;
    EXPECT_FALSE(slot.IsSet());
    slot.Call(1);
}

TEST(CallbackSlotTest, AnswersWithTheFallbackWhenEmpty) {
    CallbackSlot<int(const std::wstring&, const wchar_t*, bool)> slot;
    EXPECT_EQ(slot.CallOr(-1, L"name", L"path", true), -1);
    slot.Set([](const std::wstring& name, const wchar_t*, bool) { return static_cast<int>(name.size()); });
    EXPECT_EQ(slot.CallOr(-1, L"name", L"path", true), 4);
}

TEST(CallbackSlotTest, SetReplacesAndAnEmptyFunctionEmpties) {
    CallbackSlot<void()> slot;
    std::string calls;
    slot.Set([&calls] { calls += 'a'; });
    slot.Set([&calls] { calls += 'b'; });
    slot.Call();
    EXPECT_EQ(calls, "b");
    slot.Set({});
    EXPECT_FALSE(slot.IsSet());
    slot.Call();
    EXPECT_EQ(calls, "b");
}

TEST(CallbackSlotTest, ACallbackMayReplaceItself) {
    CallbackSlot<void()> slot;
    std::string calls;
    slot.Set([&slot, &calls, padding = std::string(100, 'x')] {
        slot.Set([&calls] { calls += 'b'; });
        calls += padding.front();
    });
    slot.Call();
    slot.Call();
    EXPECT_EQ(calls, "xb");
}

TEST(CallbackSlotTest, SetWaitsForTheCallOnAnotherThread) {
    CallbackSlot<void()> slot;
    std::promise<void> entered;
    std::promise<void> mayLeave;
    bool left = false;  // written by the callback, read after Set returned
    slot.Set([&] {
        entered.set_value();
        mayLeave.get_future().wait();
        left = true;
    });
    std::thread caller([&slot] { slot.Call(); });
    entered.get_future().wait();
    std::promise<void> setting;
    std::thread release([&] {
        setting.get_future().wait();
        mayLeave.set_value();
    });
    setting.set_value();
    slot.Set({});
    EXPECT_TRUE(left);
    caller.join();
    release.join();
}

}  // namespace
