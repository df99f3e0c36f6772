#pragma once
// Messages of the test's thread, and the real mouse and keyboard.
//
// Why: windows under test live on the test's own thread, so the test itself runs their messages. Input goes through
// the system, so it hits what lies under the pointer and has the focus. Thread: the test's.
#include <windows.h>

#include <chrono>
#include <functional>

#include "DuiLib/ControlUI.h"
#include "DuiLib/PaintManagerUI.h"

namespace Input {

// How long a test waits for something that has to happen.
inline constexpr std::chrono::seconds kDeadline{20};

// Runs the messages that wait, and those that come of them.
void Pump();
// Runs messages until the condition holds; false when the deadline passes.
bool PumpUntil(const std::function<bool()>& condition);
// Whether a message loop would have ended since the last call.
bool TakeQuit();
// While one lives, the test acts from within a message loop of the program: that loop gets the message that ends it.
class WithinLoop {
  public:
    WithinLoop();
    ~WithinLoop();
    WithinLoop(const WithinLoop&) = delete;
    WithinLoop& operator=(const WithinLoop&) = delete;
};

// --- the mouse; each runs the messages that come of it
void MoveTo(POINT screenPx);
// Away from every window.
void Park();
void MoveTo(const DuiLib::CControlUI& control);
void MoveTo(const DuiLib::CPaintManagerUI& manager, DuiLib::Point clientPx);
void ButtonDown();
void ButtonUp();
void Click(const DuiLib::CControlUI& control);
void Wheel(int notches);

// --- the keyboard; for the window that has the focus
void Key(WORD virtualKey);
void KeyWith(WORD modifier, WORD virtualKey);

// Makes it the foreground window with the keyboard; false when the system refuses.
bool Activate(HWND window);

}  // namespace Input
