#pragma once
// Draws camera frames into the preview window with Direct3D 9.
//
// It owns a windowed device on the preview window and an additional swap chain whose lockable back buffer has the
// video's size. Each frame is converted straight into that back buffer, mirrored so that the user sees himself as in a
// looking-glass, and then scaled into the window with black bars around it. Presenting never waits for the display.
// Threads: no lock of its own, and the device is not made for several threads. Open runs on the window's thread,
// ConfigureVideo where the camera is opened, DrawSample on the thread that delivers frames; the owner sees to it that
// no two operations run at once.
#include <windows.h>

#include <d3d9.h>
#include <mfidl.h>

#include "preview/FormatTable.h"

class Device {
  public:
    Device() = default;
    virtual ~Device();
    Device(const Device&) = delete;
    Device& operator=(const Device&) = delete;

    // Creates the Direct3D object and device; S_OK at once when there is a device. A refused device is also told in a
    // message box. `window`: borrowed; must outlive the device.
    [[nodiscard]] HRESULT Open(HWND window);

    bool IsFormatSupported(GUID subtype) const;
    // The format table's entry; MF_E_NO_MORE_TYPES past its end, the subtype is then left alone.
    [[nodiscard]] HRESULT GetFormat(UINT index, GUID* subtype) const;

    // Adopts a media type: converter, size, stride, aspect ratio, swap chain and place within the window. After a
    // failure nothing is configured.
    [[nodiscard]] HRESULT ConfigureVideo(IMFMediaType* type);

    // Converts, mirrors and presents one frame. S_FALSE: the buffer was too short for the agreed size and was dropped.
    [[nodiscard]] HRESULT DrawSample(IMFMediaBuffer* buffer);

    // Releases swap chain, device and Direct3D object. Size and format survive, so that a reset can build them anew.
    void Destroy();

    // Flips the locked back buffer left to right; the pixel size follows from the pitch.
    void MirrorState(D3DLOCKED_RECT* locked);

  protected:
    // For a derived class that loses the device on purpose; null when there is none. Borrowed.
    IDirect3DDevice9* Direct3DDevice() const { return device_; }

  private:
    HRESULT AdoptMediaType(IMFMediaType* type);
    HRESULT CreateSwapChain();
    void UpdateTargetRect();
    HRESULT DrawFrame(const BYTE* firstRow, LONG stride);
    void Convert(D3DLOCKED_RECT* locked, const BYTE* firstRow, LONG stride);
    HRESULT Present(IDirect3DSurface9* surface);
    HRESULT CheckDevice();
    HRESULT Reset();

    HWND window_ = nullptr;  // borrowed
    IDirect3DDevice9* device_ = nullptr;
    IDirect3D9* direct3d_ = nullptr;
    IDirect3DSwapChain9* swapChain_ = nullptr;
    D3DPRESENT_PARAMETERS deviceParameters_ = {};
    DWORD format_ = 0;  // the first 32 bits of the subtype; 0: not configured
    UINT32 widthPx_ = 0;
    UINT32 heightPx_ = 0;
    UINT32 pixelAspect_[2] = {1, 1};  // width to height
    LONG defaultStride_ = 0;          // bytes; negative: bottom-up
    UINT32 interlaceMode_ = MFVideoInterlace_Progressive;
    RECT destination_ = {};                            // client area, pixels
    const preview::FormatEntry* converter_ = nullptr;  // borrowed from the format table; null: none
};
