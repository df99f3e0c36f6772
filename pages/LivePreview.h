#pragma once
// The live camera picture of the home page: its switch, its window, the capture, and what ends it.
//
// The page hands on what concerns the preview: clicks of the switch, moves of the window, the screen's lock, errors of
// the capture. The class knows nothing of the page but two of its controls, which it finds by name ("preview_switch",
// "preview_wnd"). A camera that falls silent is given up after five seconds.
// Thread: UI thread.
#include <windows.h>

#include <cstdint>
#include <functional>
#include <string>

#include "pages/PreviewWindow.h"

class PageHost;
class Preview;

namespace DuiLib {
class CControlUI;
class CPaintManagerUI;
}  // namespace DuiLib

class LivePreview {
  public:
    struct SwitchImages {
        std::wstring on;
        std::wstring off;
    };
    // A control of the page; null when the layout lacks it.
    using FindControl = std::function<DuiLib::CControlUI*(const wchar_t* name)>;

    // `host` and `paintManager` are borrowed and outlive the page; `host` may be null.
    LivePreview(PageHost* host, DuiLib::CPaintManagerUI* paintManager, FindControl find, SwitchImages images);
    ~LivePreview();
    LivePreview(const LivePreview&) = delete;
    LivePreview& operator=(const LivePreview&) = delete;

    // Looks its controls up; once, when the window exists.
    void Initialize();
    // Makes the window that the camera picture is drawn into; one that exists is used again. 1, or 0 on failure.
    int OnCreate(HWND parentWindow);
    // Makes the capture object for that window; its errors go to the parent window. 1, or 0 on failure.
    int CreateMF(HWND previewWindow, HWND parentWindow);
    // The switch: turns the preview on, or off when it runs. `sender` may be null.
    void Click(DuiLib::CControlUI* sender);
    // Places the window anew over the preview area, or hides it while that is not to be seen.
    void Place();
    void OnScreenLock();
    // Zero is no error.
    void OnCaptureError(HRESULT code);

  private:
    void Start(DuiLib::CControlUI* sender);
    // Stops and releases the capture, if there is one; the picture and the switch stay as they are.
    void Stop();
    void ShowOff(DuiLib::CControlUI* previewSwitch);
    void DrawSwitch(DuiLib::CControlUI* control, bool on) const;
    bool IsAreaShown() const;
    void OnTick();

    // --- constant after construction
    PageHost* const host_;                         // borrowed; may be null
    DuiLib::CPaintManagerUI* const paintManager_;  // borrowed
    const FindControl find_;
    const SwitchImages images_;

    // --- UI thread
    DuiLib::CControlUI* switch_ = nullptr;  // borrowed from the page's tree
    DuiLib::CControlUI* area_ = nullptr;    // borrowed from the page's tree
    PreviewWindow window_;
    Preview* preview_ = nullptr;         // owned reference; null: the preview is off
    std::uint64_t lastFrameTickMs_ = 0;  // as the last tick found it
    int ticksWithoutFrame_ = 0;
};
