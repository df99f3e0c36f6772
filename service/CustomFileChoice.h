#pragma once
// The choice of a file as background: the system's dialog or a file that was dropped, and the checks that the camera
// service's limits ask for.
//
// Why: what the dialog gives may be anything; each refusal is one kind of message, published here. What happens with
// an accepted file is others' business.
// Threads: UI thread, which paints while a file is looked at.
#include <windows.h>

#include <string>

namespace service {

class CustomFileChoice {
  public:
    // The window is borrowed; null for a dialog of its own.
    explicit CustomFileChoice(HWND owner) : owner_(owner) {}

    // False when nothing was chosen, or it was refused; `path` is then as it was.
    [[nodiscard]] bool Choose(std::wstring& path) const;

    // A file that came without the dialog, and so without its filter.
    static bool IsAccepted(const std::wstring& path);
    static bool CheckImageFile(const std::wstring& path);
    static bool CheckVideoFile(const std::wstring& path);

  private:
    // False when the dialog was cancelled or failed, which is logged.
    bool AskForFile(std::wstring& path) const;

    const HWND owner_;
};

}  // namespace service
