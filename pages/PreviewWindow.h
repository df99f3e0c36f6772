#pragma once
// The native window over the main window's preview area, into which the camera picture is drawn.
//
// A popup that the main window owns. It is transparent until it is shown for the first time, has the shape of the
// rounded preview area, stands at fixed numbers relative to the main window's client area, and drags the main window
// when it is dragged. It never takes the keyboard. The renderer draws; this class never paints. Thread: UI thread.
#include <windows.h>

#include <functional>
#include <string>

class PreviewWindow {
  public:
    // What its owner is told; on the UI thread.
    struct Events {
        std::function<void()> destroyed;   // the window is about to go, with the main window or by itself
        std::function<void()> tick;        // once a second while ticks are wanted
        std::function<void()> deviceLost;  // the capture has posted that its graphics device is lost
        std::function<void(const std::wstring& link)> deviceRemoved;  // a camera was taken out
    };

    explicit PreviewWindow(Events events);
    ~PreviewWindow();
    PreviewWindow(const PreviewWindow&) = delete;
    PreviewWindow& operator=(const PreviewWindow&) = delete;

    // Makes the window, fully transparent and without a size; nothing when there is one. It is to be placed before a
    // graphics device is made for it. False: the system refused.
    [[nodiscard]] bool Create(HWND owner, HINSTANCE instance);
    // The window goes without ending the program.
    void Destroy();
    HWND Get() const { return window_; }
    // What a screen reader calls it.
    void SetName(const std::wstring& name) const;

    // Moves the window right above the main window and cuts it to its shape, for the main window's scale; hidden while
    // the main window is minimised or hidden, or `areaShown` is false, whether it was shown or not.
    void Place(int dpi, bool areaShown);
    // From now on it is shown, opaque, wherever Place finds that it may be; and places it.
    void Show(int dpi, bool areaShown);
    void Hide();
    void WantTicks(bool wanted);

  private:
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    LRESULT Handle(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    void AskForRemovals();
    void OnDeviceChange(WPARAM wParam, LPARAM lParam) const;
    void Raise();
    bool IsAboveOwner() const;
    void DragOwner(LPARAM screenPoint) const;

    const Events events_;
    HWND window_ = nullptr;
    HWND owner_ = nullptr;  // borrowed; it destroys this window when it goes
    HDEVNOTIFY removals_ = nullptr;
    bool shown_ = false;  // wanted by Show and Hide
};
