#pragma once
// What the preview's tests share: the platform's media part started, a window to draw into, and what that window shows
// on the screen.
//
// One thread, the test's, which also owns the windows; Wait serves their messages.
#include <windows.h>

#include <gmock/gmock.h>

#include <chrono>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "tests/support/TestLog.h"
#include "tests/support/Wait.h"

namespace preview_test {

using harness::kPatience;
// Serves messages until the condition holds. False: it did not within the time.
inline bool Wait(const std::function<bool()>& condition, std::chrono::milliseconds patience = kPatience) {
    return harness::PumpUntil(condition, patience);
}

// A top-level popup without a border, so that its client area has exactly that size.
class TestWindow {
  public:
    TestWindow(int width, int height, bool visible = true);
    ~TestWindow();
    TestWindow(const TestWindow&) = delete;
    TestWindow& operator=(const TestWindow&) = delete;

    HWND Get() const { return window_; }
    void Resize(int width, int height);
    // Numbers of the messages WM_APP + 1 that arrived, with their first parameter.
    const std::vector<WPARAM>& Events() const { return events_; }
    // How many messages WM_APP + 2 arrived.
    int DeviceMessages() const { return deviceMessages_; }

  private:
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

    HWND window_;
    std::vector<WPARAM> events_;
    int deviceMessages_ = 0;
};

// What the screen shows where the window's client area is: 0x00RRGGBB, top row first.
struct Shot {
    int width = 0;
    int height = 0;
    std::vector<std::uint32_t> pixels;

    std::uint32_t At(int x, int y) const { return pixels.at(static_cast<std::size_t>(y) * width + x); }
};
Shot ShotOf(HWND window);
// Takes shots until one satisfies the condition; the last one in any case.
Shot WaitForShot(HWND window, const std::function<bool(const Shot&)>& condition);

// Whether no channel differs by more.
bool IsNear(std::uint32_t a, std::uint32_t b, int tolerance);

inline bool IsSame(const RECT& a, const RECT& b) {
    return EqualRect(&a, &b) != FALSE;
}

class PreviewTest : public testing::Test {
  protected:
    static void SetUpTestSuite();
    static void TearDownTestSuite();

    // The level 4 lines since the last call, as "text(Class::Function)". One that a test does not take fails it.
    static std::vector<std::string> TakeFailures() { return harness::TestLog::TakeFailures(); }
    // The level 3 lines of the test, in the same form.
    static std::vector<std::string> Notes();
};

}  // namespace preview_test
