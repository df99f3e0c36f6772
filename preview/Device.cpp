#include "preview/Device.h"

#include <mferror.h>

#include <utility>

#include "preview/Direct3DSystem.h"
#include "preview/FrameLock.h"
#include "preview/MediaFoundation.h"
#include "preview/VisiblePart.h"
#include "preview/pixels/LetterBox.h"
#include "preview/pixels/MirrorPicture.h"
#include "preview/pixels/SourceExtent.h"
#include "suite/common/ComReference.h"
#include "suite/common/ComRelease.h"
#include "suite/logger/QxLogger.h"

namespace {

constexpr UINT kBackBuffers = 2;

// The device cannot be used now, and can be again later.
constexpr bool IsLoss(HRESULT result) {
    return result == D3DERR_DEVICELOST || result == D3DERR_DEVICENOTRESET || result == D3DERR_NOTAVAILABLE;
}

struct CreationError {
    HRESULT result;
    const wchar_t* name;
};

constexpr CreationError kCreationErrors[] = {
    {D3DERR_DEVICELOST, L"D3DERR_DEVICELOST"},
    {D3DERR_INVALIDCALL, L"D3DERR_INVALIDCALL"},
    {D3DERR_NOTAVAILABLE, L"D3DERR_NOTAVAILABLE"},
    {D3DERR_OUTOFVIDEOMEMORY, L"D3DERR_OUTOFVIDEOMEMORY"},
};

void TellCreationError(HRESULT result) {
    for (const CreationError& error : kCreationErrors) {
        if (error.result == result) {
            direct3d_system::TellInBox(error.name, L"d3d错误");
        }
    }
}

}  // namespace

Device::~Device() {
    Destroy();
}

suite::ComReference<IDirect3D9> Device::CreateDirect3D() {
    return suite::ComReference<IDirect3D9>(direct3d_system::Create9(D3D_SDK_VERSION));
}

HRESULT Device::Open(HWND window) {
    if (device_) {
        return S_OK;
    }
    HRESULT result = FindDirect3D();
    if (SUCCEEDED(result)) {
        result = CreateDevice(window);
        if (FAILED(result)) {
            TellCreationError(result);
        }
    }
    return result;
}

HRESULT Device::FindDirect3D() {
    if (!direct3d_) {
        direct3d_ = CreateDirect3D().Detach();
        if (!direct3d_) {
            return E_FAIL;
        }
    }
    D3DDISPLAYMODE mode = {};
    const HRESULT result = direct3d_->GetAdapterDisplayMode(D3DADAPTER_DEFAULT, &mode);
    if (FAILED(result)) {
        return result;
    }
    return direct3d_->CheckDeviceType(D3DADAPTER_DEFAULT, D3DDEVTYPE_HAL, mode.Format, D3DFMT_X8R8G8B8, TRUE);
}

HRESULT Device::CreateDevice(HWND window) {
    D3DPRESENT_PARAMETERS parameters = {};
    parameters.BackBufferFormat = D3DFMT_X8R8G8B8;
    parameters.SwapEffect = D3DSWAPEFFECT_COPY;
    parameters.PresentationInterval = D3DPRESENT_INTERVAL_IMMEDIATE;
    parameters.Windowed = TRUE;
    parameters.hDeviceWindow = window;
    const D3DPRESENT_PARAMETERS asked = parameters;  // the system writes the window's size of now into its own
    const HRESULT result =
        direct3d_->CreateDevice(D3DADAPTER_DEFAULT, D3DDEVTYPE_HAL, window,
                                D3DCREATE_HARDWARE_VERTEXPROCESSING | D3DCREATE_FPU_PRESERVE, &parameters, &device_);
    if (SUCCEEDED(result)) {
        window_ = window;
        windowThread_ = GetCurrentThreadId();
        deviceParameters_ = asked;
    }
    return result;
}

bool Device::IsFormatSupported(GUID subtype) const {
    return preview::FindFormat(subtype) != nullptr;
}

HRESULT Device::GetFormat(UINT index, GUID* subtype) const {
    const auto table = preview::FormatTable();
    if (index >= table.size()) {
        return MF_E_NO_MORE_TYPES;
    }
    *subtype = table[index].subtype;
    return S_OK;
}

HRESULT Device::ConfigureVideo(IMFMediaType* type) {
    HRESULT result = AdoptMediaType(type);
    if (SUCCEEDED(result)) {
        result = CreateSwapChain();
    }
    if (IsLoss(result)) {
        // The type is all right: the swap chain comes with the device.
        loss_.Notice();
        result = S_OK;
    }
    if (FAILED(result)) {
        format_ = 0;
        converter_ = nullptr;
        return result;
    }
    UpdateTargetRect();
    return result;
}

HRESULT Device::AdoptMediaType(IMFMediaType* type) {
    GUID subtype = {};
    HRESULT result = type->GetGUID(MF_MT_SUBTYPE, &subtype);
    if (FAILED(result)) {
        return result;
    }
    converter_ = preview::FindFormat(subtype);
    if (!converter_) {
        return MF_E_INVALIDMEDIATYPE;
    }
    result = MFGetAttributeSize(type, MF_MT_FRAME_SIZE, &widthPx_, &heightPx_);
    if (FAILED(result)) {
        return result;
    }
    // A back buffer of size 0 would silently take the window's size.
    if (widthPx_ == 0 || heightPx_ == 0 || widthPx_ > preview::kMostSide || heightPx_ > preview::kMostSide) {
        return MF_E_INVALIDMEDIATYPE;
    }
    interlaceMode_ = MFGetAttributeUINT32(type, MF_MT_INTERLACE_MODE, MFVideoInterlace_Progressive);
    UINT32 stride = 0;
    if (SUCCEEDED(type->GetUINT32(MF_MT_DEFAULT_STRIDE, &stride))) {
        defaultStride_ = static_cast<LONG>(stride);
    } else {
        result = media_foundation::GetStrideForBitmapInfoHeader(subtype.Data1, widthPx_, &defaultStride_);
        if (SUCCEEDED(result)) {
            result = type->SetUINT32(MF_MT_DEFAULT_STRIDE, static_cast<UINT32>(defaultStride_));
        }
        if (FAILED(result)) {
            return result;
        }
    }
    if (FAILED(MFGetAttributeRatio(type, MF_MT_PIXEL_ASPECT_RATIO, &pixelAspect_[0], &pixelAspect_[1]))) {
        pixelAspect_[0] = 1;
        pixelAspect_[1] = 1;
    }
    format_ = subtype.Data1;
    picture_ = preview::VisiblePart(type, static_cast<LONG>(widthPx_), static_cast<LONG>(heightPx_));
    tellsBadBuffers_ = true;
    return S_OK;
}

HRESULT Device::CreateSwapChain() {
    ComRelease(swapChain_);
    if (!device_) {
        return loss_.IsLost() ? D3DERR_DEVICELOST : E_FAIL;
    }
    D3DPRESENT_PARAMETERS parameters = {};
    parameters.BackBufferWidth = widthPx_;
    parameters.BackBufferHeight = heightPx_;
    parameters.BackBufferFormat = D3DFMT_X8R8G8B8;
    parameters.BackBufferCount = kBackBuffers;
    parameters.SwapEffect = D3DSWAPEFFECT_FLIP;
    parameters.hDeviceWindow = window_;
    parameters.Windowed = TRUE;
    parameters.Flags = D3DPRESENTFLAG_LOCKABLE_BACKBUFFER | D3DPRESENTFLAG_DEVICECLIP | D3DPRESENTFLAG_VIDEO;
    parameters.PresentationInterval = D3DPRESENT_INTERVAL_IMMEDIATE;
    return device_->CreateAdditionalSwapChain(&parameters, &swapChain_);
}

void Device::UpdateTargetRect() {
    RECT client = {};
    GetClientRect(window_, &client);
    const preview::PictureSize size = preview::CorrectAspect(
        {picture_.right - picture_.left, picture_.bottom - picture_.top}, pixelAspect_[0], pixelAspect_[1]);
    const preview::PictureRect box = preview::LetterBox(size, {client.left, client.top, client.right, client.bottom});
    SetRect(&destination_, box.left, box.top, box.right, box.bottom);
}

HRESULT Device::DrawSample(IMFMediaBuffer* buffer) {
    if (!converter_) {
        return MF_E_INVALIDREQUEST;
    }
    if (!device_ || !swapChain_) {
        return S_OK;
    }
    HRESULT result = CheckDevice();
    if (SUCCEEDED(result)) {
        const preview::FrameLock frame(buffer, {converter_->format, widthPx_, heightPx_, defaultStride_});
        if (FAILED(frame.Result())) {
            return frame.Result();
        }
        if (!frame.Holds()) {
            TellBadBuffer();
            return S_FALSE;
        }
        result = DrawFrame(frame.FirstRow(), frame.Stride());
    }
    if (IsLoss(result)) {
        loss_.Notice();
        result = S_OK;
    }
    return result;
}

void Device::TellBadBuffer() {
    if (std::exchange(tellsBadBuffers_, false)) {
        LogLine(LogLevel::kError, L"Device::DrawSample", L"a buffer does not hold a frame of ", widthPx_, L'x',
                heightPx_);
    }
}

HRESULT Device::DrawFrame(const BYTE* firstRow, LONG stride) {
    suite::ComReference<IDirect3DSurface9> surface;
    HRESULT result = swapChain_->GetBackBuffer(0, D3DBACKBUFFER_TYPE_MONO, surface.Put());
    if (FAILED(result)) {
        return result;
    }
    D3DLOCKED_RECT locked = {};
    result = surface->LockRect(&locked, nullptr, D3DLOCK_NOSYSLOCK);
    if (SUCCEEDED(result)) {
        Convert(&locked, firstRow, stride);
        result = surface->UnlockRect();
    }
    return SUCCEEDED(result) ? Present(surface.Get()) : result;
}

void Device::Convert(D3DLOCKED_RECT* locked, const BYTE* firstRow, LONG stride) {
    auto* bits = static_cast<BYTE*>(locked->pBits);
    const auto pitch = static_cast<UINT32>(locked->Pitch);
    if (bits != nullptr && preview::BytesPerPixel(pitch, widthPx_) == 4) {
        converter_->mirrored(bits, locked->Pitch, firstRow, stride, widthPx_, heightPx_);
        return;
    }
    if (bits != nullptr) {
        converter_->plain(bits, locked->Pitch, firstRow, stride, widthPx_, heightPx_);
    }
    MirrorState(locked);
}

void Device::MirrorState(D3DLOCKED_RECT* locked) {
    if (locked->pBits == nullptr) {
        LogLine(LogLevel::kError, L"Device::MirrorState", L"Fail to get D3DLOCKED_RECT!");
        return;
    }
    preview::MirrorPicture(static_cast<BYTE*>(locked->pBits), static_cast<UINT32>(locked->Pitch), widthPx_, heightPx_);
}

HRESULT Device::Present(IDirect3DSurface9* surface) {
    // The picture's part of the surface, which is mirrored.
    const auto width = static_cast<LONG>(widthPx_);
    const RECT source = {width - picture_.right, picture_.top, width - picture_.left, picture_.bottom};
    const bool whole =
        source.left == 0 && source.top == 0 && source.right == width && source.bottom == static_cast<LONG>(heightPx_);
    suite::ComReference<IDirect3DSurface9> backBuffer;
    HRESULT result = device_->GetBackBuffer(0, 0, D3DBACKBUFFER_TYPE_MONO, backBuffer.Put());
    if (SUCCEEDED(result)) {
        result = device_->ColorFill(backBuffer.Get(), nullptr, D3DCOLOR_ARGB(0xFF, 0, 0, 0));
    }
    if (SUCCEEDED(result)) {
        result =
            device_->StretchRect(surface, whole ? nullptr : &source, backBuffer.Get(), &destination_, D3DTEXF_LINEAR);
    }
    if (SUCCEEDED(result)) {
        result = device_->Present(nullptr, nullptr, nullptr, nullptr);
        if (SUCCEEDED(result)) {
            loss_.Present();
        } else {
            loss_.Notice();  // nothing else tells that the device was lost; Recover finds out what it is
            // Kept: a present that fails must not end the preview.
            if (static_cast<LONG>(GetLastError()) >= 0) {
                result = S_OK;
            }
        }
    }
    return result;
}

HRESULT Device::CheckDevice() {
    if (!device_) {
        return E_FAIL;
    }
    if (GetCurrentThreadId() != windowThread_) {
        return loss_.IsLost() ? D3DERR_DEVICELOST : D3D_OK;
    }
    const HRESULT result = device_->TestCooperativeLevel();
    // A device that is lost cannot be reset yet.
    return result == D3DERR_DEVICENOTRESET ? Reset() : result;
}

HRESULT Device::Reset() {
    const HRESULT result = ResetDevice() ? S_OK : MakeDeviceAnew();
    return SUCCEEDED(result) ? RestoreSwapChain() : result;
}

bool Device::ResetDevice() {
    ComRelease(swapChain_);  // while one lives, no reset works
    D3DPRESENT_PARAMETERS parameters = deviceParameters_;
    if (FAILED(device_->Reset(&parameters))) {
        Destroy();
        return false;
    }
    return true;
}

HRESULT Device::MakeDeviceAnew() {
    const HRESULT result = FindDirect3D();
    return SUCCEEDED(result) ? CreateDevice(window_) : result;
}

HRESULT Device::RestoreSwapChain() {
    if (swapChain_ || format_ == 0) {
        return S_OK;
    }
    const HRESULT result = CreateSwapChain();
    if (SUCCEEDED(result)) {
        UpdateTargetRect();
    }
    return result;
}

HRESULT Device::Recover(std::uint64_t nowMs) {
    if (!loss_.IsLost()) {
        return S_OK;
    }
    if (!loss_.BeginTry(nowMs)) {
        return S_FALSE;
    }
    if (loss_.IsOver()) {
        return D3DERR_DEVICELOST;
    }
    if (loss_.WantsNewObject()) {
        Destroy();
    }
    return TryAgain();
}

HRESULT Device::RecoverWith(suite::ComReference<IDirect3D9> direct3d) {
    if (!WantsDirect3D()) {
        return IsLost() ? S_FALSE : S_OK;
    }
    direct3d_ = direct3d.Detach();
    return TryAgain();
}

HRESULT Device::TryAgain() {
    HRESULT result = direct3d_ ? FindDevice() : D3DERR_DEVICELOST;
    if (SUCCEEDED(result)) {
        result = RestoreSwapChain();
    }
    if (SUCCEEDED(result)) {
        loss_.Find();
        return S_OK;
    }
    return IsLoss(result) && !loss_.IsLastTry() ? S_FALSE : result;
}

HRESULT Device::FindDevice() {
    if (!device_) {
        return MakeDeviceAnew();
    }
    const HRESULT result = device_->TestCooperativeLevel();
    if (result != D3DERR_DEVICENOTRESET) {
        return result;
    }
    return ResetDevice() ? S_OK : D3DERR_DEVICELOST;
}

void Device::Destroy() {
    ComRelease(swapChain_);
    ComRelease(device_);
    ComRelease(direct3d_);
}
