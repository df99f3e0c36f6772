#include "tests/support/Wait.h"

#include <utility>

namespace harness {

namespace {

using Clock = std::chrono::steady_clock;

// Between two looks at conditions that nothing announces. SleepEx: CallTrace notes what calls Sleep.
constexpr DWORD kGlanceMs = 5;

bool g_quit = false;
int g_loops = 0;  // loops of the program that run messages beneath the test

// Runs the next message; false when there is none, or when the loop of the program is to end first.
bool PumpOne() {
    MSG message;
    if (!PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
        return false;
    }
    if (message.message == WM_QUIT && g_loops > 0) {
        PostQuitMessage(static_cast<int>(message.wParam));
        return false;
    }
    if (message.message == WM_QUIT) {
        g_quit = true;
        return true;
    }
    TranslateMessage(&message);
    DispatchMessageW(&message);
    return true;
}

// `pass` does what lies between two looks.
bool LookUntil(const std::function<bool()>& condition, std::chrono::milliseconds atMost, void (*pass)()) {
    const auto end = Clock::now() + atMost;
    while (!condition()) {
        if (Clock::now() > end) {
            return condition();
        }
        pass();
    }
    return true;
}

}  // namespace

bool WaitUntil(const std::function<bool()>& condition, std::chrono::milliseconds atMost) {
    return LookUntil(condition, atMost, [] { SleepEx(kGlanceMs, FALSE); });
}

bool PumpUntil(const std::function<bool()>& condition, std::chrono::milliseconds atMost) {
    return LookUntil(condition, atMost, [] {
        if (!PumpOne()) {
            MsgWaitForMultipleObjectsEx(0, nullptr, kGlanceMs, QS_ALLINPUT, MWMO_INPUTAVAILABLE);
        }
    });
}

void Pump() {
    while (PumpOne()) {
    }
}

void PumpFor(std::chrono::microseconds time) {
    const auto end = Clock::now() + time;
    while (Clock::now() < end) {
        if (!PumpOne()) {
            MsgWaitForMultipleObjectsEx(0, nullptr, 1, QS_ALLINPUT, MWMO_INPUTAVAILABLE);
        }
    }
}

bool TakeQuit() {
    Pump();
    return std::exchange(g_quit, false);
}

WithinLoop::WithinLoop() {
    ++g_loops;
}

WithinLoop::~WithinLoop() {
    --g_loops;
}

}  // namespace harness
