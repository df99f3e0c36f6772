#pragma once
// What a page may ask of the window that it lives in. Pages know nothing else of the window.
//
// Threads: UI thread, except where an operation says otherwise.
#include <windows.h>

#include <string>

#include "service/GlobalUtils.h"

namespace DuiLib {
class CControlUI;
}

// The pages' names: what they are switched to by, and their virtual windows.
namespace PageNames {

inline constexpr wchar_t kHome[] = L"HomePage";
inline constexpr wchar_t kIntroduction[] = L"IntroductionPage";

}  // namespace PageNames

// A hint popup; the calls come in the order SetAnchor, SetToolTipText, SetPosition, Show(true).
class HintWindow {
  public:
    virtual void SetAnchor(DuiLib::CControlUI* control) = 0;  // borrowed until the hint is hidden
    // Top left corner at that distance, in pixels, from the anchor's.
    virtual void SetPosition(int dxPx, int dyPx) = 0;
    virtual void SetToolTipText(const std::wstring& text) = 0;
    virtual int GetToolTipWidth() = 0;  // of the present text, in 96-DPI units
    virtual void Show(bool visible) = 0;

  protected:
    ~HintWindow() = default;
};

class PageHost {
  public:
    enum class Hint { kOption, kDeleteButton };

    // The window that pages are being made for; null when there is none.
    static PageHost* Current();

    // Shows the page of that name; nothing when there is none. Kept: the pages give a flag, which means nothing.
    virtual void ShowPage(const std::wstring& name, int flag) = 0;
    // Back to the page that is shown first.
    virtual void ShowFirstPage() = 0;
    // Closes the window and ends the program's message loop. Any thread: it is handed to the UI thread.
    virtual void CloseWindow() = 0;
    // Queues a message box; a kind that waits or is shown already is not queued again. Any thread.
    virtual void ShowMessage(GlobalUtils::MessageBoxKind kind) = 0;
    // Queues the question whether that custom background shall be deleted, or the notice that the limit is reached.
    virtual void AskForDeletion(const std::wstring& itemName) = 0;
    virtual void ShowLimitNotice() = 0;
    virtual HintWindow* GetHint(Hint hint) = 0;
    virtual HWND GetWindow() const = 0;

  protected:
    ~PageHost() = default;
    // The host announces itself on construction and takes that back (null) when it goes.
    static void SetCurrent(PageHost* host);
};
