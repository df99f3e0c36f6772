#pragma once
// The real mouse and keyboard, for windows that live on the test's own thread.
//
// Why: input goes through the system, so it hits what lies under the pointer and has the focus. After each the test
// runs the messages that come of it. Thread: the test's.
#include <windows.h>

#include "DuiLib/ControlUI.h"
#include "DuiLib/PaintManagerUI.h"
#include "tests/support/Wait.h"

namespace Input {

using harness::kPatience;
using harness::Pump;
using harness::PumpUntil;
using harness::TakeQuit;
using harness::WithinLoop;

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

// Makes it the foreground window with the keyboard; false when the system refuses.
bool Activate(HWND window);

}  // namespace Input
