#include "tools/democamera/JpegFrame.h"

#include <objbase.h>
#include <wincodec.h>

#include "suite/common/ComApartment.h"
#include "suite/common/ComReference.h"

namespace democamera {

namespace {

HRESULT WriteFrame(IWICBitmapEncoder* encoder, const std::uint32_t* picture, std::uint32_t width,
                   std::uint32_t height) {
    suite::ComReference<IWICBitmapFrameEncode> frame;
    HRESULT result = encoder->CreateNewFrame(frame.Put(), nullptr);
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
    const suite::ComApartment com(suite::ComApartment::Kind::kMultiThreaded);
    suite::ComReference<IWICImagingFactory> factory;
    suite::ComReference<IStream> stream;
    suite::ComReference<IWICBitmapEncoder> encoder;
    HRESULT result = CoCreateInstance(CLSID_WICImagingFactory, nullptr, CLSCTX_INPROC_SERVER, IID_IWICImagingFactory,
                                      factory.PutVoid());
    if (SUCCEEDED(result)) {
        result = CreateStreamOnHGlobal(nullptr, TRUE, stream.Put());
    }
    if (SUCCEEDED(result)) {
        result = factory->CreateEncoder(GUID_ContainerFormatJpeg, nullptr, encoder.Put());
    }
    if (SUCCEEDED(result)) {
        result = encoder->Initialize(stream.Get(), WICBitmapEncoderNoCache);
    }
    if (SUCCEEDED(result)) {
        result = WriteFrame(encoder.Get(), picture, width, height);
    }
    if (SUCCEEDED(result)) {
        result = encoder->Commit();
    }
    if (SUCCEEDED(result)) {
        result = CopyStream(stream.Get(), file);
    }
    return result;
}

}  // namespace democamera
