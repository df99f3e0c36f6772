#pragma once
// The objects of the Direct3D double: system, device, additional swap chain and surface. The rules are told in
// GraphicsDouble.h. Threads: any; the device itself watches that no two calls are inside at once.
#include <atomic>
#include <cstring>
#include <memory>

#include "tests/support/doubles/GuardedMemory.h"
#include "tests/support/doubles/UnusedDirect3D.h"

namespace doubles {

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"  // deleted by Release alone
class Direct3DDouble final : public UnusedDirect3D {
  public:
    explicit Direct3DDouble(int number) : number_(number) {}

    STDMETHODIMP QueryInterface(REFIID iid, void** object) override;
    STDMETHODIMP_(ULONG) AddRef() override { return ++references_; }
    STDMETHODIMP_(ULONG) Release() override;
    STDMETHODIMP GetAdapterDisplayMode(UINT adapter, D3DDISPLAYMODE* mode) override;
    STDMETHODIMP CheckDeviceType(UINT adapter, D3DDEVTYPE type, D3DFORMAT display, D3DFORMAT backBuffer,
                                 BOOL windowed) override;
    STDMETHODIMP CreateDevice(UINT adapter, D3DDEVTYPE type, HWND window, DWORD behavior,
                              D3DPRESENT_PARAMETERS* parameters, IDirect3DDevice9** device) override;

  private:
    const int number_;
    std::atomic<ULONG> references_ = 1;
};

class DeviceDouble final : public UnusedDevice {
  public:
    DeviceDouble(int object, HWND window, SIZE backBuffer);

    STDMETHODIMP QueryInterface(REFIID iid, void** object) override;
    STDMETHODIMP_(ULONG) AddRef() override { return ++references_; }
    STDMETHODIMP_(ULONG) Release() override;
    STDMETHODIMP TestCooperativeLevel() override;
    STDMETHODIMP Reset(D3DPRESENT_PARAMETERS* parameters) override;
    STDMETHODIMP CreateAdditionalSwapChain(D3DPRESENT_PARAMETERS* parameters, IDirect3DSwapChain9** chain) override;
    STDMETHODIMP GetBackBuffer(UINT chain, UINT index, D3DBACKBUFFER_TYPE type, IDirect3DSurface9** surface) override;
    STDMETHODIMP ColorFill(IDirect3DSurface9* surface, const RECT* rect, D3DCOLOR color) override;
    STDMETHODIMP StretchRect(IDirect3DSurface9* source, const RECT* sourceRect, IDirect3DSurface9* target,
                             const RECT* targetRect, D3DTEXTUREFILTERTYPE filter) override;
    STDMETHODIMP Present(const RECT* source, const RECT* target, HWND window, const RGNDATA* dirty) override;

    // While one lives, a call is inside the device: a second one is a broken rule.
    class Inside {
      public:
        Inside(DeviceDouble* device, const char* call);
        ~Inside() { device_->callInside_ = former_; }
        Inside(const Inside&) = delete;
        Inside& operator=(const Inside&) = delete;

      private:
        DeviceDouble* const device_;
        const char* const former_;
    };

    // What lives of it beside itself.
    std::atomic<int> chainsAlive = 0;
    std::atomic<int> surfacesAlive = 0;

  private:
    bool IsOwnThread(const char* call) const;
    bool IsLost();
    HRESULT RefuseReset(HRESULT result);

    const int object_;  // number of the IDirect3D9 that made it
    const HWND window_;
    const DWORD thread_;
    std::atomic<ULONG> references_ = 1;
    std::atomic<const char*> callInside_ = nullptr;
    std::atomic<int> lossesSurvived_;  // of the desktop's losses: fewer than there were means that it is lost
    std::atomic<bool> resetFailed_ = false;
    SIZE backBuffer_;
};

class SurfaceDouble final : public UnusedSurface {
  public:
    // `device`: borrowed; outlives its surfaces, which is one of the rules.
    SurfaceDouble(DeviceDouble* device, SIZE size, std::shared_ptr<GuardedMemory> bits, LONG pitch);

    STDMETHODIMP QueryInterface(REFIID iid, void** object) override;
    STDMETHODIMP_(ULONG) AddRef() override { return ++references_; }
    STDMETHODIMP_(ULONG) Release() override;
    STDMETHODIMP LockRect(D3DLOCKED_RECT* locked, const RECT* rect, DWORD flags) override;
    STDMETHODIMP UnlockRect() override;

    SIZE Size() const { return size_; }
    bool IsLocked() const { return locked_; }
    // 0x00RRGGBB; empty for the device's own back buffer.
    std::vector<std::uint32_t> Pixels() const;

  private:
    DeviceDouble* const device_;
    const SIZE size_;
    const std::shared_ptr<GuardedMemory> bits_;
    const LONG pitch_;
    std::atomic<ULONG> references_ = 1;
    bool locked_ = false;
};

class SwapChainDouble final : public UnusedSwapChain {
  public:
    SwapChainDouble(DeviceDouble* device, SIZE size);

    STDMETHODIMP QueryInterface(REFIID iid, void** object) override;
    STDMETHODIMP_(ULONG) AddRef() override { return ++references_; }
    STDMETHODIMP_(ULONG) Release() override;
    STDMETHODIMP GetBackBuffer(UINT index, D3DBACKBUFFER_TYPE type, IDirect3DSurface9** surface) override;

  private:
    DeviceDouble* const device_;  // borrowed, as of a surface
    const SIZE size_;
    const LONG pitch_;
    const std::shared_ptr<GuardedMemory> bits_;
    std::atomic<ULONG> references_ = 1;
};
#pragma GCC diagnostic pop

}  // namespace doubles
