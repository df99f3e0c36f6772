#pragma once
// The real program, started as its suite starts it, looked at through the accessibility door and driven by the real
// mouse and keyboard. Threads: the test's, which must have COM initialised.
#include <windows.h>

#include <optional>
#include <string>
#include <vector>

#include "suite/common/Handle.h"
#include "tests/e2e/support/Machine.h"
#include "tests/support/Protocol.h"
#include "tools/probe/AccessibleWindow.h"

namespace e2e {

class Program {
  public:
    // Starts the program that Machine names from `folder` (with a trailing backslash; empty: the folder in the
    // environment variable PIXORA_PROGRAM_FOLDER, else the tests' own) with that command line after the program's path.
    explicit Program(const std::wstring& arguments = L"run", const std::wstring& folder = {});
    // Ends the process, if it still runs.
    ~Program();
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    // The window once it is shown, has its controls and has painted; null when the time is over.
    HWND WaitForWindow();
    HWND Window() const { return window_; }
    HANDLE Process() const { return process_.Get(); }
    DWORD ProcessId() const { return processId_; }
    // The exit code once the process has ended; nothing when the time is over.
    std::optional<DWORD> WaitForEnd(std::chrono::milliseconds atMost = kPatience);
    bool Runs() const;

    // The control of that layout name; nothing when it is not shown.
    std::optional<AccessibleControl> Find(const std::wstring& name) const;
    std::optional<AccessibleControl> WaitFor(const std::wstring& name) const;
    // The control's rectangle in client coordinates.
    RECT ClientRect(const std::wstring& name) const;

    // Tells the open window that its screen has another DPI, as the system does when it was moved that far. The result
    // is the rectangle that the system suggests, in screen pixels.
    RECT SetScale(int dpi, POINT move = {}) const;

    // --- the real mouse and keyboard
    void MoveTo(POINT screen) const;
    // As MoveTo, until it stays there: late news of where the pointer was before may bring it back, and a click would
    // hit what lies there.
    bool HoldPointerAt(POINT screen) const;
    void Click(const std::wstring& name) const;
    void ClickAt(POINT screen) const;
    void ClickHere() const;  // where the pointer is
    // Presses the left button at that point, moves the window by so much, in steps, and releases the button. False: the
    // window did not follow each step.
    bool DragWindow(POINT gripScreen, SIZE by) const;
    void PressKey(WORD key, bool alt = false) const;
    // Waits for a message box, presses its button and waits until it is gone; what it said. Nothing: none came, there
    // were several, or it stayed.
    std::optional<std::wstring> TakeMessage() const;
    // Notches away from the user, negative ones towards.
    void Wheel(int notches) const;
    // Scrolls the effects until the control is whole in sight; false when it cannot be.
    bool Reveal(const std::wstring& name) const;

    // The window's client area as it is on the screen, 0x00RRGGBB, top row first.
    std::vector<DWORD> Pixels(SIZE& sizePx) const;
    // Pixel of the window as it is on the screen, 0x00RRGGBB.
    COLORREF PixelAt(int xPx, int yPx) const;
    // What stands between the user and the window, for whoever reads why a click did nothing.
    std::string InputState() const;
    // Leaves build/screenshots/<name>.png; true when it has more different colours than that, which is waited for.
    bool Screenshot(const std::wstring& name, int moreColorsThan = 0) const;

  private:
    suite::Handle process_;
    DWORD processId_ = 0;
    HWND window_ = nullptr;
};

// Visible top-level windows of the class, whoever they belong to.
int CountWindows(const wchar_t* className);

using harness::Protocol::kMessageClass;

}  // namespace e2e
