#pragma once
// The live camera picture of the home page: its switch, its window, the capture, and what ends it.
//
// The page hands on what concerns the preview: clicks of the switch, moves of the window, the screen's lock, the
// computer's sleep, errors of the capture. The class knows nothing of the page but some of its controls, which it finds
// by name ("preview_switch", "preview_wnd", "preview_text").
//
// A camera takes its time, and a broken one all of it, so the window never waits for one:
//   - Opening runs on another thread, with the switch drawn on and disabled: first Direct3D looks through the adapters
//     there, then, with the device that this thread makes, the camera is opened. What follows (the window shown, the
//     wait for the first frames, the switch enabled) happens when that thread reports. Meanwhile everything else works,
//     and a click of the switch does not count, by whatever device; clicks that wait in the queue when the switch is
//     enabled come to their own controls first. What ends the preview before that (lock, sleep, an error, the page's
//     end) drops the opening: its thread closes the camera itself when it comes back.
//   - Closing is bounded (Preview::Close); a capture whose graphics device is in use is kept with its window until the
//     device is free (BusyCaptures.h). The next one waits for that, as an opening: with two devices, the older one's
//     release may never come back (Wine 8 makes contexts for it without end).
//   - A lost graphics device is asked for here, on the window's thread, when the capture posts and then once a second.
//     Where it needs a new object of Direct3D, the other thread looks for it too, one at a time.
//   - A camera that falls silent is given up after five seconds, an opening that does not end after ten.
// Thread: UI thread.
#include <windows.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "pages/BusyCaptures.h"
#include "pages/PreviewWindow.h"
#include "service/GlobalUtils.h"
#include "suite/common/ComReference.h"

struct IDirect3D9;
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
    // Frees the camera; the user turns the preview on again.
    void OnScreenLock();
    // Sleep frees the camera too; and for ten seconds after it a camera that fails is opened again, and not told.
    void OnPower(GlobalUtils::PowerKind kind);
    // Zero is no error.
    void OnCaptureError(HRESULT code);

  private:
    // One step of an opening, which lasts from the click until the switch can be clicked again. Owned by its page
    // alone: who finds it gone comes too late.
    struct Opening {
        LivePreview* page;
        bool wantsDirect3D = false;
    };

    int CreateCapture(HWND previewWindow, HWND parentWindow, suite::ComReference<IDirect3D9> direct3d);
    void MakeCapture(suite::ComReference<IDirect3D9> direct3d);
    void TurnOn(DuiLib::CControlUI* sender, suite::ComReference<IDirect3D9> direct3d);
    void TurnOnWhenDeviceIsFree();
    void FindDirect3D();
    // OnDirect3DFound gets what there is. False: nothing can be looked for.
    [[nodiscard]] bool LookForDirect3D();
    void OnDirect3DFound(suite::ComReference<IDirect3D9> direct3d);
    // Whether it runs, or is to run.
    bool IsOn() const { return preview_ || opening_; }
    void BeginOpening(DuiLib::CControlUI* sender);
    void Start(DuiLib::CControlUI* sender);
    void Open();
    // On another thread.
    static void OpenOnCameraThread(Preview& capture, const std::weak_ptr<Opening>& opening);
    void OnOpened(bool started);
    void ShowPicture();
    // The switch can be clicked again.
    void EndOpening();
    void FailOpening();
    void GiveUpOpening();
    // Runs the operation after a time, unless the opening has ended by then.
    void Later(unsigned delayMs, void (LivePreview::*operation)()) const;
    // Opens the camera in a second; closes it before.
    void OpenLater();
    void OpenAgain();
    bool IsShortlyAfterResume() const;

    // Stops and releases the capture, if there is one; the picture and the switch stay as they are.
    void Stop();
    void ShowOff(DuiLib::CControlUI* previewSwitch);
    // By what it shows; a screen reader says so.
    void NameArea(const wchar_t* text) const;
    void DrawSwitch(DuiLib::CControlUI* control, bool on) const;
    void EnableSwitch() const;
    bool IsAreaShown() const;
    void OnTick();
    void RecoverDevice();
    // `result`: of a try to get the capture's device back.
    void OnDeviceTried(const Preview* capture, HRESULT result);
    void CheckSilence();
    void OnDeviceRemoved(const std::wstring& link);

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
    std::shared_ptr<Opening> opening_;   // null: none is under way
    BusyCaptures left_;                  // former captures
    bool makingCapture_ = false;         // a box may be open
    std::uint64_t lastFrameTickMs_ = 0;  // as the last tick found it
    int ticksWithoutFrame_ = 0;
    bool isLossLogged_ = false;                 // of the device that is lost now
    std::uint64_t resumedTickMs_ = 0;           // 0: never
    bool findsDirect3D_ = false;                // one look at a time: who comes meanwhile gets what it finds
    const std::shared_ptr<LivePreview*> self_;  // ends with it: queued tasks hold a weak_ptr
};
