#include "tools/democamera/JpegFrame.h"

#include <objbase.h>
#include <wincodec.h>

#include "suite/common/ComRelease.h"

namespace democamera {

namespace {

class ComScope {
  public:
    ComScope() : result_(CoInitializeEx(nullptr, COINIT_MULTITHREADED)) {}
    ~ComScope() {
        if (SUCCEEDED(result_)) {
            CoUninitialize();
        }
    }
    ComScope(const ComScope&) = delete;
    ComScope& operator=(const ComScope&) = delete;

  private:
    const HRESULT result_;
};

HRESULT WriteFrame(IWICBitmapEncoder* encoder, const std::uint32_t* picture, std::uint32_t width,
                   std::uint32_t height) {
    IWICBitmapFrameEncode* frame = nullptr;
    HRESULT result = encoder->CreateNewFrame(&frame, nullptr);
    if (SUCCEEDED(result)) {
        result = frame->Initialize(nullptr);
    }
    if (SUCCEEDED(result)) {
        result = frame->SetSize(width, height);
    }
    WICPixelFormatGUID format = GUID_WICPixelFormat24bppBGR;
    if (SUCCEEDED(result)) {
        result = frame->SetPixelFormat(&format);
    }
    std::vector<BYTE> rows(std::size_t{3} * width * height);
    for (std::size_t i = 0; i < std::size_t{width} * height; ++i) {
        rows[3 * i] = static_cast<BYTE>(picture[i]);
        rows[3 * i + 1] = static_cast<BYTE>(picture[i] >> 8);
        rows[3 * i + 2] = static_cast<BYTE>(picture[i] >> 16);
    }
    if (SUCCEEDED(result)) {
        result = frame->WritePixels(height, 3 * width, static_cast<UINT>(rows.size()), rows.data());
    }
    if (SUCCEEDED(result)) {
        result = frame->Commit();
    }
    ComRelease(frame);
    return result;
}

HRESULT CopyStream(IStream* stream, std::vector<std::uint8_t>* file) {
    HGLOBAL memory = nullptr;
    STATSTG status = {};
    HRESULT result = GetHGlobalFromStream(stream, &memory);
    if (SUCCEEDED(result)) {
        result = stream->Stat(&status, STATFLAG_NONAME);
    }
    if (FAILED(result)) {
        return result;
    }
    const auto* bytes = static_cast<const std::uint8_t*>(GlobalLock(memory));
    file->assign(bytes, bytes + status.cbSize.QuadPart);
    GlobalUnlock(memory);
    return S_OK;
}

}  // namespace

HRESULT EncodeJpeg(const std::uint32_t* picture, std::uint32_t width, std::uint32_t height,
                   std::vector<std::uint8_t>* file) {
    const ComScope com;
    IWICImagingFactory* factory = nullptr;
    IStream* stream = nullptr;
    IWICBitmapEncoder* encoder = nullptr;
    HRESULT result = CoCreateInstance(CLSID_WICImagingFactory, nullptr, CLSCTX_INPROC_SERVER, IID_IWICImagingFactory,
                                      reinterpret_cast<void**>(&factory));
    if (SUCCEEDED(result)) {
        result = CreateStreamOnHGlobal(nullptr, TRUE, &stream);
    }
    if (SUCCEEDED(result)) {
        result = factory->CreateEncoder(GUID_ContainerFormatJpeg, nullptr, &encoder);
    }
    if (SUCCEEDED(result)) {
        result = encoder->Initialize(stream, WICBitmapEncoderNoCache);
    }
    if (SUCCEEDED(result)) {
        result = WriteFrame(encoder, picture, width, height);
    }
    if (SUCCEEDED(result)) {
        result = encoder->Commit();
    }
    if (SUCCEEDED(result)) {
        result = CopyStream(stream, file);
    }
    ComRelease(encoder);
    ComRelease(stream);
    ComRelease(factory);
    return result;
}

}  // namespace democamera
