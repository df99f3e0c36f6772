#pragma once
// The system's dialog that asks for a file, driven by the real keyboard. Threads: the test's.
#include <windows.h>

#include <string>

namespace e2e {

class FileDialog {
  public:
    // Waits until a dialog that belongs to `owner` is shown and takes what is typed; false when the time is over.
    bool WaitFor(HWND owner);
    HWND Window() const { return window_; }

    // Types the path into the edit field, for which it must have the focus, and presses Enter.
    void Choose(const std::wstring& path) const;
    void Cancel() const;
    // Waits until it has closed; false when the time is over.
    bool WaitForEnd() const;

  private:
    HWND Edit() const;

    HWND window_ = nullptr;
};

}  // namespace e2e
