#include "tests/windows/support/Input.h"

#include <utility>

namespace Input {

namespace {

// How long one wait for a message lasts at most, so that conditions that no message announces are looked at too.
constexpr DWORD kGlanceMs = 10;

bool g_quit = false;
int g_loops = 0;  // loops of the program that run messages beneath the test

void SendMouse(DWORD flags, DWORD data = 0) {
    INPUT input = {};
    input.type = INPUT_MOUSE;
    input.mi.dwFlags = flags;
    input.mi.mouseData = data;
    SendInput(1, &input, sizeof(input));
    Pump();
}

void SendKey(WORD virtualKey, DWORD flags) {
    INPUT input = {};
    input.type = INPUT_KEYBOARD;
    input.ki.wVk = virtualKey;
    input.ki.dwFlags = flags;
    SendInput(1, &input, sizeof(input));
    Pump();
}

// Runs the next message; false when there is none, or when the loop of the program is to end first.
bool PumpOne() {
    MSG message;
    if (!PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE))
        return false;
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

}  // namespace

void Pump() {
    while (PumpOne()) {
    }
}

bool PumpUntil(const std::function<bool()>& condition) {
    const auto deadline = std::chrono::steady_clock::now() + kDeadline;
    // After each single message: the next one may undo what the condition waits for.
    while (!condition()) {
        if (std::chrono::steady_clock::now() > deadline)
            return false;
        if (!PumpOne())
            MsgWaitForMultipleObjects(0, nullptr, FALSE, kGlanceMs, QS_ALLINPUT);
    }
    return true;
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

void MoveTo(POINT screenPx) {
    SetCursorPos(screenPx.x, screenPx.y);
    Pump();
}

void Park() {
    MoveTo(POINT{0, GetSystemMetrics(SM_CYSCREEN) - 1});
}

void MoveTo(const DuiLib::CPaintManagerUI& manager, DuiLib::Point clientPx) {
    POINT point{clientPx.x, clientPx.y};
    ClientToScreen(manager.GetPaintWindow(), &point);
    MoveTo(point);
}

void MoveTo(const DuiLib::CControlUI& control) {
    DuiLib::CPaintManagerUI& manager = *control.GetManager();
    manager.UpdateLayout();
    const DuiLib::Rect& place = control.GetPos();
    MoveTo(manager, {(place.left + place.right) / 2, (place.top + place.bottom) / 2});
}

void ButtonDown() {
    SendMouse(MOUSEEVENTF_LEFTDOWN);
}

void ButtonUp() {
    SendMouse(MOUSEEVENTF_LEFTUP);
}

void Click(const DuiLib::CControlUI& control) {
    MoveTo(control);
    ButtonDown();
    ButtonUp();
}

void Wheel(int notches) {
    SendMouse(MOUSEEVENTF_WHEEL, static_cast<DWORD>(notches * WHEEL_DELTA));
}

void Key(WORD virtualKey) {
    SendKey(virtualKey, 0);
    SendKey(virtualKey, KEYEVENTF_KEYUP);
}

void KeyWith(WORD modifier, WORD virtualKey) {
    SendKey(modifier, 0);
    Key(virtualKey);
    SendKey(modifier, KEYEVENTF_KEYUP);
}

bool Activate(HWND window) {
    SetForegroundWindow(window);
    SetFocus(window);
    return PumpUntil([window] { return GetForegroundWindow() == window && GetFocus() == window; });
}

}  // namespace Input
