#pragma once
// Turns a window's input messages into events of controls: hit test, hover, capture, focus and keyboard navigation.
//
// Hover is a path: the control under the pointer and its ancestors; each gets MouseEnter and MouseLeave once as the
// pointer comes into and out of it or anything in it. While a control has the capture only its own path is hovered.
// A control that is disabled, or within one that is, gets neither buttons nor keys. Every event may remove controls,
// open modal loops or destroy the window: after each, only members that Forget keeps true are looked at, or controls
// that RetiredControls keeps alive, whose manager is then another. Thread: UI thread.
#include <windows.h>

#include <vector>

#include "DuiLib/Event.h"
#include "DuiLib/PaintManagerUI.h"
#include "window/RetiredControls.h"
#include "window/ToolTip.h"

namespace DuiLib {

class InputRouter {
  public:
    // Both borrowed; they must outlive the router.
    InputRouter(CPaintManagerUI& manager, RetiredControls& retired) : manager_(manager), retired_(retired) {}

    // True when the message is done with.
    bool OnMessage(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result);
    // The window is gone.
    void OnWindowGone();
    // Controls were arranged, shown, hidden, enabled or disabled: lets go of what cannot be used any more, and looks at
    // what is under the pointer now.
    void OnTreeChanged();
    // The control leaves the tree; nothing is called.
    void Forget(const CControlUI* control);

    CControlUI* GetFocus() const { return focus_; }
    void SetFocus(CControlUI* control, bool byKeyboard);
    bool SetNextTabControl(bool forward);
    bool IsFocusRingShown() const { return (focusRing_ || cuesAlways_) && !windowInactive_; }
    // Settings of the user may be others now.
    void ReadSettings();

    CControlUI* GetCapture() const { return capture_; }
    void SetCapture(CControlUI* control);
    // Given back by the control itself: it gets no event.
    void ReleaseCapture();
    // Taken away: the control gets CaptureLost.
    void CancelCapture();
    // The left button is up: the system's capture ends before anybody may open a window of his own, the control's
    // stays until it has been told.
    void ReleaseSystemCapture();

    CControlUI* GetHot() const { return hotPath_.empty() ? nullptr : hotPath_.back(); }
    // The tooltip goes: its font or its colours are about to change. The next one has the new ones.
    void DropToolTip() { toolTip_.Drop(); }
    // Asks for WM_MOUSELEAVE.
    void TrackLeave();

  private:
    // Nothing when the control is null or has left the tree.
    void Send(CControlUI* control, const TEventUI& event);
    bool IsInTree(const CControlUI* control) const { return control && control->GetManager() == &manager_; }
    // In the tree, shown, and enabled with all its ancestors.
    bool IsUsable(const CControlUI* control) const;
    TEventUI MakeEvent(EventType type) const;
    CControlUI* HitTest(Point px) const;
    void Hover(CControlUI* control);
    void HoverAt(Point px);
    void UpdateToolTip();

    void OnMouseMove(Point px);
    void OnMouseLeave();
    void OnButtonDown(Point px, bool doubleClick);
    void OnButtonUp(Point px);
    // A finger that pans scrolls what is under it.
    bool OnGesture(LPARAM lParam);
    void PanBy(Point px);
    bool OnMouseWheel(UINT message, WPARAM wParam, LPARAM lParam);
    bool OnSetCursor(LPARAM lParam);
    bool OnKeyDown(WORD key, bool repeat);
    bool OnKeyUp(WORD key);
    bool OnReturn(bool repeat);
    bool OnEscape();
    void OnWindowFocus(bool has);
    void ShowFocusRing(bool show);

    CPaintManagerUI& manager_;
    RetiredControls& retired_;
    ToolTip toolTip_;
    CControlUI* focus_ = nullptr;
    CControlUI* tabOrigin_ = nullptr;  // where Tab goes on when nobody has the focus
    CControlUI* capture_ = nullptr;
    std::vector<CControlUI*> hotPath_;  // outermost first
    unsigned hoverRound_ = 0;           // number of Hover calls; an outer call that finds another number stops
    Point mousePx_;
    Point panPx_;                      // where the finger was last, screen
    CControlUI* panTarget_ = nullptr;  // the container that the pan under way scrolls
    bool mouseInside_ = false;
    bool focusRing_ = false;
    bool cuesAlways_ = false;      // the user wants to see the focus without having pressed a key
    bool windowInactive_ = false;  // the keyboard went to another window; the focused control was told
    bool releasingSystemCapture_ = false;
};

}  // namespace DuiLib
