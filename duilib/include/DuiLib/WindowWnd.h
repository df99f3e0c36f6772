#pragma once
// (SendMessage and PostMessage are macros of the system header; they are members here under their plain names.)
// A window of the system and its procedure. Exceptions end at the procedure and are logged.
// Thread: the thread that creates the window. The object must outlive its window; OnFinalMessage, which comes when the
// last message of the window has been handled, nested ones included, may destroy the object.
#include <windows.h>

#include <string>

#include "DuiLib/Export.h"

namespace DuiLib {

class DUILIB_API CWindowWnd {
  public:
    CWindowWnd() = default;
    virtual ~CWindowWnd();
    CWindowWnd(const CWindowWnd&) = delete;
    CWindowWnd& operator=(const CWindowWnd&) = delete;

    HWND GetHWND() const { return hwnd_; }
    // Registers the window class on first use. An earlier window of this object is destroyed. Without a place it is
    // made on its parent's screen, or on the one that the program was started from. Null on failure, which is logged.
    HWND Create(HWND parent, const std::wstring& title, DWORD style, DWORD exStyle, int x = CW_USEDEFAULT,
                int y = CW_USEDEFAULT, int cx = CW_USEDEFAULT, int cy = CW_USEDEFAULT, HMENU menu = nullptr);
    void ShowWindow(bool show = true, bool takeFocus = true);
    // Shows the window, disables its parent, and runs messages until the window is gone; returns Close's value, or 0
    // when it was closed by other means. A quit message destroys the window and is posted again for the outer loop.
    UINT ShowModal();
    bool IsModal() const { return modal_ != nullptr; }
    // Destroys the window (posted as WM_CLOSE with the result in wParam, so that the caller's handler may return
    // first).
    void Close(UINT result = 0);
    void CenterWindow();            // in the work area of its monitor
    void Center2ParentWindow();     // over its parent, kept within the monitor's work area
    void SetIcon(UINT resourceId);  // an icon of the program's resources, in the sizes of the window's DPI
    LRESULT SendMessage(UINT message, WPARAM wParam = 0, LPARAM lParam = 0);
    bool PostMessage(UINT message, WPARAM wParam = 0, LPARAM lParam = 0);

  protected:
    virtual const wchar_t* GetWindowClassName() const = 0;
    virtual UINT GetClassStyle() const { return 0; }
    // The end of a subclass's chain: lets the system answer.
    virtual LRESULT HandleMessage(UINT message, WPARAM wParam, LPARAM lParam);
    // Moves the window there, kept within the monitor's work area. Null: it keeps its size.
    void MoveIntoWorkArea(HMONITOR monitor, int x, int y, const SIZE* px = nullptr);
    // The modal loop begins, with the window shown, or ends, with the window about to go.
    virtual void OnModal(bool) {}
    // The window is gone; `hwnd` is no more than a number.
    virtual void OnFinalMessage(HWND hwnd);

  private:
    struct ModalLoop;

    static LRESULT CALLBACK WindowProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
    bool RegisterWindowClass();
    LRESULT Guarded(UINT message, WPARAM wParam, LPARAM lParam);
    void EnableOwner();
    void DestroyIcons();

    HWND hwnd_ = nullptr;
    int depth_ = 0;               // window procedures of this window that are under way
    bool gone_ = false;           // WM_NCDESTROY came; OnFinalMessage follows when depth_ is 0
    ModalLoop* modal_ = nullptr;  // on the stack of ShowModal
    HICON bigIcon_ = nullptr;
    HICON smallIcon_ = nullptr;
};

}  // namespace DuiLib
