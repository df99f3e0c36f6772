#pragma once
// Draws camera frames into the preview window with Direct3D 9.
//
// It owns a windowed device on the preview window and an additional swap chain whose lockable back buffer has the
// video's size. Each frame is converted straight into that back buffer, mirrored so that the user sees himself as in a
// looking-glass, and then scaled into the window with black bars around it. Presenting never waits for the display.
//
// A lost device (see DeviceLoss.h) is no failure: frames are dropped, and Recover makes it work again, or tells that it
// takes a new object of Direct3D and RecoverWith. Direct3D ties a device to the thread of its window: only there it may
// be asked, reset and released, so another thread that draws only notices that it is lost.
//
// Threads: no lock of its own, and the device is not made for several threads; the owner sees to it that no two
// operations run at once. Adopt, Open, Recover, RecoverWith and Destroy run on the window's thread, ConfigureVideo
// where the camera is opened, DrawSample on the thread that delivers frames.
#include <windows.h>

#include <d3d9.h>
#include <mfidl.h>

#include <cstdint>

#include "preview/DeviceLoss.h"
#include "preview/FormatTable.h"
#include "suite/common/ComReference.h"

class Device {
  public:
    Device() = default;
    virtual ~Device();
    Device(const Device&) = delete;
    Device& operator=(const Device&) = delete;

    // Makes a Direct3D object for Adopt: looking through the adapters may take some tenths of a second, in which a
    // window should not have to wait. It belongs to no thread, unlike a device. Null: the system has none. Any thread.
    [[nodiscard]] static suite::ComReference<IDirect3D9> CreateDirect3D();
    // The object that Open makes its device with, in the place of one of its own. REQUIRES: there is none yet.
    void Adopt(suite::ComReference<IDirect3D9> direct3d) { direct3d_ = direct3d.Detach(); }

    // Creates the Direct3D object and device; S_OK at once when there is a device. A refused device is also told in a
    // message box. `window`: borrowed; must outlive the device.
    [[nodiscard]] HRESULT Open(HWND window);

    bool IsFormatSupported(GUID subtype) const;
    // The format table's entry; MF_E_NO_MORE_TYPES past its end, the subtype is then left alone.
    [[nodiscard]] HRESULT GetFormat(UINT index, GUID* subtype) const;

    // Adopts a media type: converter, size, stride, aspect ratio, swap chain and place within the window. After a
    // failure nothing is configured.
    [[nodiscard]] HRESULT ConfigureVideo(IMFMediaType* type);

    // Converts, mirrors and presents one frame. S_OK also for a frame that is dropped because there is no device for
    // now. S_FALSE: the buffer does not hold a frame of the agreed size and was dropped.
    [[nodiscard]] HRESULT DrawSample(IMFMediaBuffer* buffer);

    // Frames are dropped until Recover has found the device again.
    bool IsLost() const { return loss_.IsLost(); }
    // Tries to get a lost device back, once a second at most, and never with a box. S_FALSE: not yet. A failure: it
    // will not come back. REQUIRES: the window's thread.
    [[nodiscard]] HRESULT Recover(std::uint64_t nowMs);
    // Whether it can only come back with a new Direct3D object, which Recover does not make: it may take long.
    bool WantsDirect3D() const { return IsLost() && direct3d_ == nullptr; }
    // Goes on with the try that wants one. Null: the system has none for now. As Recover otherwise.
    [[nodiscard]] HRESULT RecoverWith(suite::ComReference<IDirect3D9> direct3d);

    // Releases swap chain, device and Direct3D object. Size and format survive, so that a reset can build them anew.
    void Destroy();

    // Flips the locked back buffer left to right; the pixel size follows from the pitch.
    void MirrorState(D3DLOCKED_RECT* locked);

  protected:
    // For a derived class that loses the device on purpose; null when there is none. Borrowed.
    IDirect3DDevice9* Direct3DDevice() const { return device_; }

  private:
    HRESULT FindDirect3D();
    HRESULT CreateDevice(HWND window);
    HRESULT MakeDeviceAnew();
    HRESULT AdoptMediaType(IMFMediaType* type);
    HRESULT CreateSwapChain();
    void UpdateTargetRect();
    HRESULT DrawFrame(const BYTE* firstRow, LONG stride);
    void Convert(D3DLOCKED_RECT* locked, const BYTE* firstRow, LONG stride);
    HRESULT Present(IDirect3DSurface9* surface);
    void TellBadBuffer();
    HRESULT CheckDevice();
    HRESULT Reset();
    // False: the device is gone, and its Direct3D object with it.
    bool ResetDevice();
    HRESULT RestoreSwapChain();
    HRESULT TryAgain();
    HRESULT FindDevice();

    HWND window_ = nullptr;  // borrowed
    DWORD windowThread_ = 0;
    IDirect3DDevice9* device_ = nullptr;
    IDirect3D9* direct3d_ = nullptr;
    IDirect3DSwapChain9* swapChain_ = nullptr;
    D3DPRESENT_PARAMETERS deviceParameters_ = {};  // with no size, which is the window's at each reset
    preview::DeviceLoss loss_;
    DWORD format_ = 0;  // the first 32 bits of the subtype; 0: not configured
    UINT32 widthPx_ = 0;
    UINT32 heightPx_ = 0;
    RECT picture_ = {};               // the part of a frame that is to be seen
    bool tellsBadBuffers_ = false;    // none was told of since the type was adopted
    UINT32 pixelAspect_[2] = {1, 1};  // width to height
    LONG defaultStride_ = 0;          // bytes; negative: bottom-up
    UINT32 interlaceMode_ = MFVideoInterlace_Progressive;
    RECT destination_ = {};                            // client area, pixels
    const preview::FormatEntry* converter_ = nullptr;  // borrowed from the format table; null: none
};
