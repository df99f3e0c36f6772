#pragma once
// A Direct3D 9 that keeps the system's documented rules, and what a test makes it do.
//
// Linked in the place of direct3d_system (preview/Direct3DSystem.h). Laxer systems forgive what this one does not:
//   - the Direct3D object may be made on any thread
//   - the device belongs to the thread that made it, which is the thread of its window's procedure: Reset,
//     TestCooperativeLevel and the last Release from another thread fail and are broken rules (Violations)
//   - Reset fails while an additional swap chain or a reference to a back buffer lives, and is a broken rule while the
//     device is lost; after a failed Reset only Reset, TestCooperativeLevel and Release may be called
//   - a lost device tells so in Present, TestCooperativeLevel, CreateAdditionalSwapChain and Reset alone; drawing and
//     locking seem to work; CreateDevice is not available meanwhile
//   - two calls at once, also from within a message that a call sends, are a broken rule: the device is not made for
//     several threads
//   - one device at a time: of two the older one's release may never come back
//   - no device on a window without a client area; a back buffer of no size takes the window's; what is drawn beyond
//     the back buffer fails
// Threads: any; everything is guarded by one mutex, which no call of the outside is made under.
#include <windows.h>

#include <d3d9.h>

#include <cstdint>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

namespace doubles {

// What happens to calls, set by a test. Results count until they are changed; S_OK: the call works.
struct GraphicsScript {
    bool noDirect3D = false;               // Direct3DCreate9 gives null
    std::function<void()> withinCreation;  // of the Direct3D object
    HRESULT displayMode = S_OK;
    HRESULT deviceType = S_OK;
    HRESULT createDevice = S_OK;
    HRESULT createSwapChain = S_OK;
    HRESULT reset = S_OK;
    HRESULT cooperativeLevel = S_OK;
    HRESULT present = S_OK;
    DWORD presentLastError = 0;  // what Present leaves behind for GetLastError
    HRESULT colorFill = S_OK;
    bool lockGivesNull = false;
    std::int32_t extraPitch = 0;  // bytes behind the pixels of a locked row
    std::function<void()> withinReset;
    std::function<void()> withinPresent;
    std::function<void()> whileBoxIsShown;
};

// What was seen.
struct GraphicsSeen {
    int objects = 0;  // Direct3DCreate9
    int objectsAlive = 0;
    int devices = 0;  // made
    int devicesAlive = 0;
    int refusals = 0;               // of CreateDevice
    int releasesWithoutWindow = 0;  // of a device whose window had gone
    int chains = 0;                 // made
    int chainsAlive = 0;
    int resets = 0;        // that worked
    int failedResets = 0;  // Reset, not TestCooperativeLevel
    int levels = 0;        // TestCooperativeLevel
    int presents = 0;      // that worked
    int failedPresents = 0;
    DWORD behavior = 0;
    D3DPRESENT_PARAMETERS deviceParameters = {};  // as handed over
    D3DPRESENT_PARAMETERS resetParameters = {};   // as handed over
    D3DPRESENT_PARAMETERS chainParameters = {};
    UINT sdkVersion = 0;
    DWORD lockFlags = 0;
    D3DTEXTUREFILTERTYPE filter = D3DTEXF_NONE;
    D3DCOLOR fill = 0;
    SIZE backBuffer = {};                // of the device
    RECT source = {};                    // of the last StretchRect; the whole surface when none was given
    RECT destination = {};               // of the last StretchRect
    std::vector<std::uint32_t> picture;  // of the last surface that was presented: all of its pixels, 0x00RRGGBB
    std::vector<std::wstring> boxes;     // "caption: text"
};

class Graphics {
  public:
    // A healthy system that has seen nothing. REQUIRES: no object of the former one lives.
    static void Begin();
    // What lives is left alone from now on: nobody can release it any more.
    static void Forget();

    static void Change(const std::function<void(GraphicsScript&)>& change);
    static GraphicsScript Script();
    static GraphicsSeen Seen();

    // The desktop goes: every device is lost, and none can be made.
    static void TakeDesktop();
    // The same for so many calls that tell of it (Present, TestCooperativeLevel, CreateDevice); then it comes back.
    static void TakeDesktopFor(int calls);
    // It comes back: devices can be reset and made. With `forNewObjectsOnly` only those of objects made from now on.
    static void GiveDesktopBack(bool forNewObjectsOnly = false);
};

}  // namespace doubles
