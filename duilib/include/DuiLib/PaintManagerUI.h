#pragma once
// One window's tree of controls: finds, arranges and paints them, and turns the window's messages into events.
//
// Life: Init (a window), AttachDialog (a tree), MessageHandler for every message of the window, until WM_NCDESTROY.
// A paint goes through a back buffer of 32-bit pixels that the manager keeps: only controls that meet the dirty
// rectangle paint, then the dirty rectangle is copied to the window. Nothing runs while nothing happens: there is no
// timer. Coordinates are client pixels unless said. Thread: UI thread, the static settings included.
#include <windows.h>

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "DuiLib/Color.h"
#include "DuiLib/ControlUI.h"
#include "DuiLib/FontSpec.h"
#include "DuiLib/Notify.h"

namespace DuiLib {

class FontTable;
class ImageCache;
struct TImageInfo;

// What a layout's <Window> element says; sizes in 96-DPI units.
struct WindowSpec {
    Size sizeDip;  // 0,0: the window's size stays as it was created
    Size minSizeDip, maxSizeDip;
    bool growWithText = false;  // see WindowImplBase
    int roundCornerDip = 0;     // radius; the system's own rounding is used where it has one
    Color bkColor = 0xFFFFFFFF;
    Color borderColor;                         // a line of one pixel along the window's edge
    std::wstring defaultButton, cancelButton;  // names of the controls that Enter and Esc press
    bool closeOnEscape = false;
    // Of a box: the controls whose texts are its name and its message to a screen reader.
    std::wstring accTitle, accMessage;
    Color textColor = 0xFF1A1A1A, disabledTextColor = 0xFFA0A0A0, linkColor = 0xFF0A59F7, hotLinkColor = 0xFF0847C5,
          focusColor = 0xFF1A1A1A;
};

class DUILIB_API CPaintManagerUI {
  public:
    CPaintManagerUI();
    ~CPaintManagerUI();
    CPaintManagerUI(const CPaintManagerUI&) = delete;
    CPaintManagerUI& operator=(const CPaintManagerUI&) = delete;

    // --- the process
    // Also makes the calling thread the UI thread of UIMainQueue.
    static void SetInstance(HINSTANCE instance);
    static HINSTANCE GetInstance();
    static std::wstring GetInstancePath();  // folder of the program, with a trailing backslash
    static void SetResourcePath(const std::wstring& folder);
    static const std::wstring& GetResourcePath();
    // Runs until WM_QUIT; returns its code.
    static int MessageLoop();

    // --- the window
    void Init(HWND window);
    HWND GetPaintWindow() const;
    // A memory device context for measuring text; valid as long as the manager.
    HDC GetPaintDC() const;
    // Takes the tree; an earlier one is destroyed.
    void AttachDialog(std::unique_ptr<CControlUI> root);
    CControlUI* GetRoot() const;
    WindowSpec& GetWindowSpec();
    // The left button was released and somebody else may answer to it: the system's capture ends, that of a control
    // stays until MessageHandler sees the release, or CancelCapture.
    void ReleaseSystemCapture();
    // The capture is taken away: the control that had it gets CaptureLost.
    void CancelCapture();
    // Asks the system for WM_MOUSELEAVE, for a window that answers WM_MOUSEMOVE itself.
    void TrackMouseLeave();
    // Sees every message of the window; true: `result` is the answer, and nothing else looks at the message.
    bool MessageHandler(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result);
    // Arranges what needs it, paints the update region and validates it. Called for WM_PAINT.
    void OnWM_PAINT();
    // Paints the whole window into a device context (WM_PRINTCLIENT, screenshots, tests).
    void PaintTo(HDC dc);

    // --- DPI
    int GetDPI() const;
    // Re-creates fonts and images and arranges anew; the window keeps its size.
    void SetDPI(int dpi);
    // WM_DPICHANGED: adopts the new DPI of the window's monitor and moves the window to the suggested rectangle.
    void OnDpiChanged(WPARAM wParam, LPARAM lParam);

    // --- controls
    CControlUI* FindControl(std::wstring_view name) const;
    CControlUI* FindControl(POINT clientPx) const;
    CControlUI* FindControlById(long id) const;
    template <typename Class>
    Class* FindControlAs(std::wstring_view name) const {
        return dynamic_cast<Class*>(FindControl(name));
    }
    void Invalidate(const Rect& px);
    void NeedUpdate();
    // Arranges at once when something needs it, so that rectangles can be read.
    void UpdateLayout();
    // Arranges, and has the pictures that the next paint needs read on other threads meanwhile. Each paint does so by
    // itself after a change of the arrangement, the theme or the scale; a window that has more to do before it is shown
    // calls it earlier.
    void ReadPicturesAhead();
    CControlUI* GetFocus() const;
    // `byKeyboard`: the focus ring is shown. Null: nobody has the focus.
    void SetFocus(CControlUI* control, bool byKeyboard = false);
    bool SetNextTabControl(bool forward);
    bool IsFocusRingShown() const;
    CControlUI* GetCapture() const;
    void SetCapture(CControlUI* control);
    void ReleaseCapture();
    CControlUI* GetHot() const;  // the control under the pointer
    // A control leaves the tree: whatever points at it is cleared.
    void ControlRemoved(CControlUI* control);
    // Tells screen readers that a control changed (EVENT_OBJECT_…CHANGE). Costs nothing when none listens.
    void NotifyAccessible(const CControlUI* control, DWORD event) const;
    // As NotifyAccessible for the control and all within it, and tells that the window's elements are others now.
    void NotifyAccessibleTree(CControlUI& control, DWORD event) const;
    // Of the window itself.
    void NotifyAccessibleWindow(DWORD event) const;
    // UIMainQueue's dispatchAfter, for controls. The task may outlive control and window: it looks first.
    static void CallAfter(unsigned delayMs, std::function<void()> task);
    // Destroys a control that left the tree as soon as no event or notification is being handled any more.
    void Retire(std::unique_ptr<CControlUI> control);

    // --- notifications
    void AddNotifier(INotifyUI* notifier);  // borrowed; must be removed before it dies
    void RemoveNotifier(INotifyUI* notifier);
    void AddMessageFilter(IMessageFilterUI* filter);  // borrowed; likewise
    void RemoveMessageFilter(IMessageFilterUI* filter);
    // Calls every notifier, now. The sender may be destroyed by one of them: callers do not touch it afterwards.
    void SendNotify(TNotifyUI& msg);
    void SendNotify(CControlUI* sender, const wchar_t* type, WPARAM wParam = 0, LPARAM lParam = 0);
    void SetQueryControlText(IQueryControlText* query);      // borrowed; null: UICulture
    std::wstring ResolveText(std::wstring_view text) const;  // "IDS_…" to its text, anything else as it is

    // --- fonts, styles, images
    void AddFont(int index, const FontSpec& font, bool isDefault);
    HFONT GetFont(int index) const;  // of the present DPI; an unknown index gives the default font
    const FontTable& Fonts() const;
    // Another number whenever measured text may have become wrong: the DPI, a font or the system's settings changed.
    unsigned GetFontGeneration() const;
    // A <Default name="Button" value="…"/> or <Style name="card" value="…"/> of a layout.
    void AddDefaultAttributes(const std::wstring& className, const std::wstring& attributes);
    void AddStyle(const std::wstring& name, const std::wstring& attributes);
    std::wstring GetDefaultAttributes(const std::wstring& className) const;  // empty: none
    std::wstring GetStyle(const std::wstring& name) const;
    // Registers a bitmap as the image of that name, scaled to width × height when it is drawn without a size of its
    // own. Takes the bitmap when `shared` is false, else copies it. False for null or unreadable bitmaps.
    bool AddImage(const std::wstring& name, HBITMAP bitmap, int widthDip, int heightDip, bool alpha, bool shared);
    // True when an image of that name or path is registered or cached.
    bool HasImage(const std::wstring& name) const;
    void RemoveImage(const std::wstring& name);
    ImageCache& Images() const;

  private:
    class Impl;
    std::unique_ptr<Impl> impl_;
};

}  // namespace DuiLib
