#include "tests/support/doubles/Direct3DDouble.h"

#include <string>

#include "tests/support/doubles/GraphicsState.h"

namespace doubles {

namespace {

GraphicsState& State() {
    return GraphicsState::The();
}

SIZE ClientSize(HWND window) {
    RECT client = {};
    GetClientRect(window, &client);
    return {client.right, client.bottom};
}

// The size that the parameters ask for; none means the window's.
SIZE WantedSize(const D3DPRESENT_PARAMETERS& parameters, HWND window) {
    if (parameters.BackBufferWidth == 0 || parameters.BackBufferHeight == 0) {
        return ClientSize(window);
    }
    return {static_cast<LONG>(parameters.BackBufferWidth), static_cast<LONG>(parameters.BackBufferHeight)};
}

void WriteSize(D3DPRESENT_PARAMETERS* parameters, SIZE size) {
    parameters->BackBufferWidth = static_cast<UINT>(size.cx);
    parameters->BackBufferHeight = static_cast<UINT>(size.cy);
}

HRESULT NoInterface(void** object) {
    *object = nullptr;
    return E_NOINTERFACE;
}

bool IsWithin(const RECT& rect, SIZE size) {
    return rect.left >= 0 && rect.top >= 0 && rect.left < rect.right && rect.top < rect.bottom &&
           rect.right <= size.cx && rect.bottom <= size.cy;
}

}  // namespace

STDMETHODIMP Direct3DDouble::QueryInterface(REFIID /*iid*/, void** object) {
    return NoInterface(object);
}

STDMETHODIMP_(ULONG) Direct3DDouble::Release() {
    const ULONG left = --references_;
    if (left == 0) {
        {
            const std::scoped_lock lock(State().mutex);
            --State().seen.objectsAlive;
        }
        delete this;
    }
    return left;
}

STDMETHODIMP Direct3DDouble::GetAdapterDisplayMode(UINT adapter, D3DDISPLAYMODE* mode) {
    if (adapter != D3DADAPTER_DEFAULT) {
        Violations::Add("GetAdapterDisplayMode of another adapter");
    }
    *mode = {1920, 1080, 60, D3DFMT_X8R8G8B8};
    return Graphics::Script().displayMode;
}

STDMETHODIMP Direct3DDouble::CheckDeviceType(UINT adapter, D3DDEVTYPE type, D3DFORMAT display, D3DFORMAT backBuffer,
                                             BOOL windowed) {
    if (adapter != D3DADAPTER_DEFAULT || type != D3DDEVTYPE_HAL || display != D3DFMT_X8R8G8B8 ||
        backBuffer != D3DFMT_X8R8G8B8 || windowed != TRUE) {
        Violations::Add("CheckDeviceType of another device than will be made");
    }
    return Graphics::Script().deviceType;
}

STDMETHODIMP Direct3DDouble::CreateDevice(UINT adapter, D3DDEVTYPE type, HWND window, DWORD behavior,
                                          D3DPRESENT_PARAMETERS* parameters, IDirect3DDevice9** device) {
    *device = nullptr;
    if (adapter != D3DADAPTER_DEFAULT || type != D3DDEVTYPE_HAL) {
        Violations::Add("CreateDevice of another adapter or type");
    }
    if (GetWindowThreadProcessId(window, nullptr) != GetCurrentThreadId()) {
        Violations::Add("CreateDevice on another thread than the window's");
    }
    const bool gone = State().IsGone(number_);
    const SIZE size = WantedSize(*parameters, parameters->hDeviceWindow);
    const std::scoped_lock lock(State().mutex);
    State().seen.deviceParameters = *parameters;
    State().seen.behavior = behavior;
    HRESULT result = State().script.createDevice;
    if (gone) {
        result = D3DERR_NOTAVAILABLE;
    } else if (size.cx == 0 || size.cy == 0) {
        result = D3DERR_INVALIDCALL;
    }
    if (FAILED(result)) {
        ++State().seen.refusals;
        return result;
    }
    WriteSize(parameters, size);
    State().seen.backBuffer = size;
    if (State().seen.devicesAlive > 0) {
        Violations::Add("CreateDevice while there is a device");
    }
    ++State().seen.devices;
    ++State().seen.devicesAlive;
    *device = new DeviceDouble(number_, window, size);
    return S_OK;
}

// --- device

DeviceDouble::Inside::Inside(DeviceDouble* device, const char* call)
    : device_(device), former_(device->callInside_.exchange(call)) {
    if (former_) {
        Violations::Add(std::string(call) + " while " + former_ + " is inside");
    }
    if (device->resetFailed_ && std::string(call) != "Reset" && std::string(call) != "TestCooperativeLevel" &&
        std::string(call) != "Release") {
        Violations::Add(std::string(call) + " after a failed Reset");
    }
}

// REQUIRES: the state's mutex is held.
DeviceDouble::DeviceDouble(int object, HWND window, SIZE backBuffer)
    : object_(object),
      window_(window),
      thread_(GetCurrentThreadId()),
      lossesSurvived_(State().losses),
      backBuffer_(backBuffer) {}

STDMETHODIMP DeviceDouble::QueryInterface(REFIID /*iid*/, void** object) {
    return NoInterface(object);
}

STDMETHODIMP_(ULONG) DeviceDouble::Release() {
    const ULONG left = --references_;
    if (left != 0) {
        return left;
    }
    {
        const Inside inside(this, "Release");
        IsOwnThread("the last Release");
        if (chainsAlive != 0 || surfacesAlive != 0) {
            Violations::Add("the device is released before its swap chain");
        }
        const std::scoped_lock lock(State().mutex);
        --State().seen.devicesAlive;
        State().seen.releasesWithoutWindow += IsWindow(window_) ? 0 : 1;
    }
    delete this;
    return 0;
}

bool DeviceDouble::IsOwnThread(const char* call) const {
    const bool own = GetCurrentThreadId() == thread_;
    if (!own) {
        Violations::Add(std::string(call) + " on another thread than the device's");
    }
    return own;
}

// Whether the device is lost or has been and was not reset.
bool DeviceDouble::IsLost() {
    const bool gone = State().IsGone(object_);
    const std::scoped_lock lock(State().mutex);
    return gone || lossesSurvived_ < State().losses || resetFailed_;
}

STDMETHODIMP DeviceDouble::TestCooperativeLevel() {
    const Inside inside(this, "TestCooperativeLevel");
    {
        const std::scoped_lock lock(State().mutex);
        ++State().seen.levels;
    }
    if (!IsOwnThread("TestCooperativeLevel")) {
        return D3DERR_INVALIDCALL;
    }
    if (State().IsGone(object_)) {
        return D3DERR_DEVICELOST;
    }
    const std::scoped_lock lock(State().mutex);
    if (lossesSurvived_ < State().losses || resetFailed_) {
        return D3DERR_DEVICENOTRESET;
    }
    return State().script.cooperativeLevel;
}

HRESULT DeviceDouble::RefuseReset(HRESULT result) {
    resetFailed_ = true;
    const std::scoped_lock lock(State().mutex);
    ++State().seen.failedResets;
    return result;
}

STDMETHODIMP DeviceDouble::Reset(D3DPRESENT_PARAMETERS* parameters) {
    const Inside inside(this, "Reset");
    const GraphicsScript script = Graphics::Script();
    {
        const std::scoped_lock lock(State().mutex);
        State().seen.resetParameters = *parameters;
    }
    if (!IsOwnThread("Reset")) {
        return RefuseReset(D3DERR_INVALIDCALL);
    }
    if (script.withinReset) {
        script.withinReset();
    }
    bool gone = false;
    {
        const std::scoped_lock lock(State().mutex);
        gone = State().desktopGone || object_ < State().objectsOfThePast;
    }
    if (gone) {
        Violations::Add("Reset of a device that is lost");
        return RefuseReset(D3DERR_DEVICELOST);
    }
    if (chainsAlive != 0 || surfacesAlive != 0) {
        Violations::Add("Reset with a swap chain or a back buffer that lives");
        return RefuseReset(D3DERR_INVALIDCALL);
    }
    const SIZE size = WantedSize(*parameters, parameters->hDeviceWindow);
    if (FAILED(script.reset)) {
        return RefuseReset(script.reset);
    }
    if (size.cx == 0 || size.cy == 0) {
        return RefuseReset(D3DERR_INVALIDCALL);
    }
    WriteSize(parameters, size);
    backBuffer_ = size;
    resetFailed_ = false;
    const std::scoped_lock lock(State().mutex);
    lossesSurvived_ = State().losses;
    State().seen.backBuffer = size;
    ++State().seen.resets;
    return S_OK;
}

STDMETHODIMP DeviceDouble::CreateAdditionalSwapChain(D3DPRESENT_PARAMETERS* parameters, IDirect3DSwapChain9** chain) {
    const Inside inside(this, "CreateAdditionalSwapChain");
    *chain = nullptr;
    if (IsLost()) {
        return D3DERR_DEVICELOST;
    }
    const SIZE size = WantedSize(*parameters, window_);
    const std::scoped_lock lock(State().mutex);
    State().seen.chainParameters = *parameters;
    if (FAILED(State().script.createSwapChain)) {
        return State().script.createSwapChain;
    }
    *chain = new SwapChainDouble(this, size);
    ++State().seen.chains;
    ++State().seen.chainsAlive;
    return S_OK;
}

STDMETHODIMP DeviceDouble::GetBackBuffer(UINT chain, UINT index, D3DBACKBUFFER_TYPE type, IDirect3DSurface9** surface) {
    const Inside inside(this, "GetBackBuffer");
    if (chain != 0 || index != 0 || type != D3DBACKBUFFER_TYPE_MONO) {
        Violations::Add("GetBackBuffer of another back buffer");
    }
    *surface = new SurfaceDouble(this, backBuffer_, nullptr, 0);
    return S_OK;
}

STDMETHODIMP DeviceDouble::ColorFill(IDirect3DSurface9* surface, const RECT* rect, D3DCOLOR color) {
    const Inside inside(this, "ColorFill");
    if (!surface || rect) {
        Violations::Add("ColorFill of a part");
    }
    const std::scoped_lock lock(State().mutex);
    State().seen.fill = color;
    return State().script.colorFill;
}

STDMETHODIMP DeviceDouble::StretchRect(IDirect3DSurface9* source, const RECT* sourceRect, IDirect3DSurface9* target,
                                       const RECT* targetRect, D3DTEXTUREFILTERTYPE filter) {
    const Inside inside(this, "StretchRect");
    auto* from = static_cast<SurfaceDouble*>(source);
    auto* to = static_cast<SurfaceDouble*>(target);
    if (from->IsLocked()) {
        Violations::Add("StretchRect from a locked surface");
        return D3DERR_INVALIDCALL;
    }
    const RECT whole = {0, 0, from->Size().cx, from->Size().cy};
    const RECT wanted = sourceRect ? *sourceRect : whole;
    if (!IsWithin(wanted, from->Size()) || (targetRect && !IsWithin(*targetRect, to->Size()))) {
        return D3DERR_INVALIDCALL;
    }
    const std::scoped_lock lock(State().mutex);
    State().seen.source = wanted;
    State().seen.destination = targetRect ? *targetRect : RECT{0, 0, to->Size().cx, to->Size().cy};
    State().seen.filter = filter;
    State().seen.picture = from->Pixels();
    return S_OK;
}

STDMETHODIMP DeviceDouble::Present(const RECT* source, const RECT* target, HWND window, const RGNDATA* dirty) {
    const Inside inside(this, "Present");
    if (source || target || window || dirty) {
        Violations::Add("Present of a part, or elsewhere");
    }
    const GraphicsScript script = Graphics::Script();
    if (script.withinPresent) {
        script.withinPresent();
    }
    const HRESULT result = IsLost() ? D3DERR_DEVICELOST : script.present;
    SetLastError(script.presentLastError);
    const std::scoped_lock lock(State().mutex);
    ++(SUCCEEDED(result) ? State().seen.presents : State().seen.failedPresents);
    return result;
}

// --- swap chain and surface

SwapChainDouble::SwapChainDouble(DeviceDouble* device, SIZE size)
    : device_(device),
      size_(size),
      pitch_(4 * size.cx + State().script.extraPitch),
      bits_(std::make_shared<GuardedMemory>(static_cast<std::size_t>(pitch_) * static_cast<std::size_t>(size.cy))) {
    ++device_->chainsAlive;
}

STDMETHODIMP SwapChainDouble::QueryInterface(REFIID /*iid*/, void** object) {
    return NoInterface(object);
}

STDMETHODIMP_(ULONG) SwapChainDouble::Release() {
    const ULONG left = --references_;
    if (left == 0) {
        {
            const DeviceDouble::Inside inside(device_, "Release");
            --device_->chainsAlive;
            const std::scoped_lock lock(State().mutex);
            --State().seen.chainsAlive;
        }
        delete this;
    }
    return left;
}

STDMETHODIMP SwapChainDouble::GetBackBuffer(UINT index, D3DBACKBUFFER_TYPE type, IDirect3DSurface9** surface) {
    const DeviceDouble::Inside inside(device_, "the chain's GetBackBuffer");
    if (index != 0 || type != D3DBACKBUFFER_TYPE_MONO) {
        Violations::Add("GetBackBuffer of another back buffer of the chain");
    }
    *surface = new SurfaceDouble(device_, size_, bits_, pitch_);
    return S_OK;
}

SurfaceDouble::SurfaceDouble(DeviceDouble* device, SIZE size, std::shared_ptr<GuardedMemory> bits, LONG pitch)
    : device_(device), size_(size), bits_(std::move(bits)), pitch_(pitch) {
    ++device_->surfacesAlive;
}

STDMETHODIMP SurfaceDouble::QueryInterface(REFIID /*iid*/, void** object) {
    return NoInterface(object);
}

STDMETHODIMP_(ULONG) SurfaceDouble::Release() {
    const ULONG left = --references_;
    if (left == 0) {
        if (locked_) {
            Violations::Add("a surface is released while it is locked");
        }
        --device_->surfacesAlive;
        delete this;
    }
    return left;
}

STDMETHODIMP SurfaceDouble::LockRect(D3DLOCKED_RECT* locked, const RECT* rect, DWORD flags) {
    const DeviceDouble::Inside inside(device_, "LockRect");
    if (!bits_ || rect || locked_) {
        Violations::Add("LockRect of what cannot be locked, of a part, or twice");
        return D3DERR_INVALIDCALL;
    }
    locked_ = true;
    const std::scoped_lock lock(State().mutex);
    State().seen.lockFlags = flags;
    *locked = {pitch_, State().script.lockGivesNull ? nullptr : bits_->Bytes()};
    return S_OK;
}

STDMETHODIMP SurfaceDouble::UnlockRect() {
    const DeviceDouble::Inside inside(device_, "UnlockRect");
    if (!locked_) {
        Violations::Add("UnlockRect of what is not locked");
        return D3DERR_INVALIDCALL;
    }
    locked_ = false;
    return S_OK;
}

std::vector<std::uint32_t> SurfaceDouble::Pixels() const {
    std::vector<std::uint32_t> pixels;
    if (!bits_) {
        return pixels;
    }
    for (LONG y = 0; y < size_.cy; ++y) {
        for (LONG x = 0; x < size_.cx; ++x) {
            std::uint32_t pixel = 0;
            std::memcpy(&pixel, bits_->Bytes() + static_cast<std::ptrdiff_t>(y) * pitch_ + 4 * x, sizeof pixel);
            pixels.push_back(pixel & 0xFFFFFF);
        }
    }
    return pixels;
}

}  // namespace doubles
