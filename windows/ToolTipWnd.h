#pragma once
// The hint popup of the settings pages: one per process, beside the control that it explains, as wide as its text.
//
// A page calls SetAnchor, SetToolTipText, SetPosition (which may depend on the text's width) and Show(true). The popup
// hides when the pointer leaves the explained control or comes onto the popup itself, when the main window loses the
// focus, and when texts get another size. Layout: a text "tooltip_text" in the visible part, "tooltip_bubble". Sizes
// and distances are 96-DPI units unless a name says px. Thread: UI thread.
#include <windows.h>

#include <string>

#include "DuiLib/WindowImplBase.h"
#include "pages/PageHost.h"

class ToolTipWnd : public DuiLib::WindowImplBase, public HintWindow {
  public:
    // With a paint manager: remembers the first one as the owner, and makes the popup (again) when there is none yet
    // or it was made for another DPI.
    static ToolTipWnd& GetInstance(DuiLib::CPaintManagerUI* paintManager);

    void SetToolTipText(const std::wstring& text) override;
    // Width that the text needs, with its margins; 0 after a logged failure.
    int GetToolTipWidth() override;
    // `control` is borrowed until the popup is hidden.
    void SetAnchor(DuiLib::CControlUI* control) override { anchor_ = control; }
    // Top left corner at that distance (px) from the anchor's; nothing without an anchor.
    void SetPosition(int dxPx, int dyPx) override;
    void Show(bool visible) override;
    void Notify(DuiLib::TNotifyUI& msg) override;

  protected:
    explicit ToolTipWnd(const wchar_t* title) : title_(title) {}

    // The body of GetInstance for whichever singleton it is.
    void Prepare(DuiLib::CPaintManagerUI* paintManager);

    const wchar_t* GetWindowClassName() const override { return L"Pixora ToolTip"; }
    std::wstring GetSkinFile() const override { return L"layout\\PixoraToolTip.xml"; }
    LRESULT OnMouseLeave(WPARAM wParam, LPARAM lParam, bool& handled) override;
    LRESULT OnMouseMove(WPARAM wParam, LPARAM lParam, bool& handled) override;
    LRESULT OnDpiChanged(WPARAM wParam, LPARAM lParam, bool& handled) override;

  private:
    int OwnerDpi() const;
    // Only the bubble of the layout is seen of the window.
    void CutToBubble();

    DuiLib::CControlUI* anchor_ = nullptr;      // borrowed; null while hidden
    DuiLib::CPaintManagerUI* owner_ = nullptr;  // borrowed; the main window's, which outlives every hint
    int xPx_ = 0, yPx_ = 0;                     // screen coordinates
    UINT dpi_ = 0;                              // that the popup was made for
    const wchar_t* const title_;
};
