#pragma once
// (SendMessage and PostMessage are macros of the system header; they are members here under their plain names.)
// A window of the system and its procedure. Exceptions end at the procedure and are logged.
// Thread: the thread that creates the window. The object must outlive its window.
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
    // Registers the window class on first use. Null on failure, which is logged.
    HWND Create(HWND parent, const std::wstring& title, DWORD style, DWORD exStyle, int x = CW_USEDEFAULT,
                int y = CW_USEDEFAULT, int cx = CW_USEDEFAULT, int cy = CW_USEDEFAULT, HMENU menu = nullptr);
    void ShowWindow(bool show = true, bool takeFocus = true);
    // Shows the window, disables its parent, and runs messages until the window is closed; returns Close's value. A
    // quit message ends it too and is posted again for the outer loop.
    UINT ShowModal();
    // Destroys the window (posted, so that the caller's handler may return first).
    void Close(UINT result = 0);
    void CenterWindow();         // in the work area of its monitor
    void Center2ParentWindow();  // over its parent, kept within the monitor's work area
    void SetIcon(UINT resourceId);
    LRESULT SendMessage(UINT message, WPARAM wParam = 0, LPARAM lParam = 0);
    bool PostMessage(UINT message, WPARAM wParam = 0, LPARAM lParam = 0);

  protected:
    virtual const wchar_t* GetWindowClassName() const = 0;
    virtual UINT GetClassStyle() const { return 0; }
    virtual LRESULT HandleMessage(UINT message, WPARAM wParam, LPARAM lParam);
    // The window is gone; `hwnd` is no more than a number.
    virtual void OnFinalMessage(HWND hwnd);

  private:
    static LRESULT CALLBACK WindowProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);

    HWND hwnd_ = nullptr;
    UINT modalResult_ = 0;
};

}  // namespace DuiLib
