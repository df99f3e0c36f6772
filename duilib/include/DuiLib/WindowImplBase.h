#pragma once
// A window that is drawn from a layout file: the base of every top-level window and popup of a program.
//
// A subclass names its layout (GetSkinFile) and its window class. On WM_CREATE the layout is built and the window gets
// the layout's size, InitWindow follows; a layout that is missing or broken leaves an empty window and a log line.
// The whole window is client area: the frame that its style asks for is kept for the system (minimise, Alt+F4, task
// bar) and is not drawn. A window with an owner is minimised with it and never alone. While the window is modal the
// system's close command (Alt+F4, the window menu) is a press of the layout's cancel button, where it has one. The user
// can size it where the layout gives a minimum or maximum size that leaves a choice; else a sizing frame and maximise
// box of its style are taken away. With growwithtext the size is that of the layout while texts have their usual size;
// where the user chose a larger one in the system, the window is wider, and as high as its content when it is shown,
// within the work area of its screen. A window of one size has the scale of its screen, or the largest smaller one at
// which it fits the work area (FittingDpi); where none fits it is as high as the work area. It keeps to that when
// scale, work area or screen change. Message handlers find `handled` true and set it to false to let the paint manager
// and the system go on. Thread: UI thread.
#include <memory>
#include <string>

#include "DuiLib/NotifyPump.h"
#include "DuiLib/PaintManagerUI.h"
#include "DuiLib/WindowWnd.h"

namespace DuiLib {

class DUILIB_API WindowImplBase : public CWindowWnd,
                                  public CNotifyPump,
                                  public INotifyUI,
                                  public IMessageFilterUI,
                                  public IDialogBuilderCallback,
                                  public IQueryControlText {
  public:
    WindowImplBase() = default;
    ~WindowImplBase() override;

    CPaintManagerUI& PaintManager() { return paintManager_; }

    // --- INotifyUI: passes the notification to the pump (virtual windows, then this window's own map).
    void Notify(TNotifyUI& msg) override;
    bool FilterMessage(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result) override;
    std::unique_ptr<CControlUI> CreateControl(const std::wstring& className) override;
    std::wstring QueryControlText(const std::wstring& key) override;

  protected:
    // Path of the layout file below the resource folder.
    virtual std::wstring GetSkinFile() const = 0;
    // The layout is built; the window is not shown yet.
    virtual void InitWindow() {}
    // A "click" of this window's own controls (those that no virtual window took).
    virtual void OnClick(TNotifyUI&) {}
    const NotifyMap& GetMessageMap() const override;  // "click" of any control: OnClick

    LRESULT HandleMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
    virtual LRESULT OnCreate(WPARAM wParam, LPARAM lParam, bool& handled);
    virtual LRESULT OnClose(WPARAM wParam, LPARAM lParam, bool& handled);
    virtual LRESULT OnDestroy(WPARAM wParam, LPARAM lParam, bool& handled);
    virtual LRESULT OnNcHitTest(WPARAM wParam, LPARAM lParam, bool& handled);
    // What the window says to a hit before its controls are asked: a sizing border (HTLEFT …) where the user can size
    // it, else 0.
    virtual LRESULT OnNcPreHitTest(WPARAM wParam, LPARAM lParam);
    virtual LRESULT OnMouseMove(WPARAM wParam, LPARAM lParam, bool& handled);
    virtual LRESULT OnMouseLeave(WPARAM wParam, LPARAM lParam, bool& handled);
    virtual LRESULT OnLButtonDown(WPARAM wParam, LPARAM lParam, bool& handled);
    virtual LRESULT OnLButtonUp(WPARAM wParam, LPARAM lParam, bool& handled);
    virtual LRESULT OnKillFocus(WPARAM wParam, LPARAM lParam, bool& handled);
    virtual LRESULT OnSize(WPARAM wParam, LPARAM lParam, bool& handled);
    virtual LRESULT OnDpiChanged(WPARAM wParam, LPARAM lParam, bool& handled);
    UINT GetClassStyle() const override { return CS_DBLCLKS | CS_DROPSHADOW; }

    // Tells screen readers of the dialog; the keyboard begins on the layout's default button.
    void OnModal(bool begins) override;

    // What WM_DPICHANGED asks for, and what its base handler does.
    void FollowDpi(WPARAM wParam, LPARAM lParam);
    // The window is being moved and sized to fit its screen; OnFitted follows.
    bool IsFitting() const { return fitting_; }
    // Scale, size or place followed the screen.
    virtual void OnFitted() {}

  private:
    void ApplyShape();
    // The layout gives it, and the user cannot change it.
    bool HasOneSize();
    // The new window fits the screen that it was made on.
    void TakeScreen();
    int DpiOnScreen();
    // In pixels; 0,0 where the layout has none.
    Size WantedSizePx();
    void FollowTextSize();
    // The size on a screen of another scale, to which the user drags the window. False: in proportion.
    bool TellScaledSize(int dpi, SIZE& px);
    // Screen or work area may be others. `intoWorkArea`: the window moves even where only its place is wrong.
    void FollowScreen(bool intoWorkArea);
    void Fit(const RECT& place);
    bool IsResizable();
    bool IsRefused(WPARAM command, LPARAM key);
    // False when there is none that can be pressed.
    bool PressCancelButton();

    CPaintManagerUI paintManager_;
    HMONITOR screen_ = nullptr;  // that the window was fitted to last
    int screenDpi_ = 0;          // that screen's, as the system told it
    bool fitting_ = false;
    bool dragged_ = false;   // by the user
    bool fitLater_ = false;  // minimised when it was time
};

}  // namespace DuiLib
