#include "tools/demo/PictureFile.h"

#include <windows.h>

#include "suite/common/ComApartment.h"
#include "suite/common/WicPicture.h"

namespace {

HRESULT Decode(const std::wstring& path, democamera::Picture& picture) {
    suite::ComReference<IWICImagingFactory> factory;
    suite::ComReference<IWICBitmapDecoder> decoder;
    suite::WicPicture file;
    HRESULT result = suite::MakeWicFactory(factory);
    if (SUCCEEDED(result)) {
        result = suite::MakeWicDecoder(factory.Get(), path.c_str(), decoder);
    }
    if (SUCCEEDED(result)) {
        result = file.Open(factory.Get(), decoder.Get(), GUID_WICPixelFormat32bppBGR);
    }
    if (SUCCEEDED(result)) {
        picture.width = static_cast<int>(file.Width());
        picture.height = static_cast<int>(file.Height());
        picture.pixels.resize(std::size_t{file.Width()} * file.Height());
        result = file.ReadRows(0, file.Height(), picture.pixels.data());
    }
    return result;
}

}  // namespace

std::shared_ptr<const democamera::Picture> LoadPicture(const std::wstring& path) {
    const suite::ComApartment com(suite::ComApartment::Kind::kMultiThreaded);
    auto picture = std::make_shared<democamera::Picture>();
    const HRESULT result = Decode(path, *picture);
    if (FAILED(result) || picture->pixels.empty()) {
        return nullptr;
    }
    return picture;
}
