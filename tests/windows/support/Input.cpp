#include "tests/windows/support/Input.h"

namespace Input {

namespace {

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

}  // namespace

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

bool Activate(HWND window) {
    SetForegroundWindow(window);
    SetFocus(window);
    return PumpUntil([window] { return GetForegroundWindow() == window && GetFocus() == window; });
}

}  // namespace Input
