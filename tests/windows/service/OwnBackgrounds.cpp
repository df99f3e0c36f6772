#include "tests/windows/service/OwnBackgrounds.h"

#include <wincodec.h>

#include <cstdlib>
#include <fstream>
#include <iterator>

#include "suite/common/Held.h"

namespace fs = std::filesystem;

void OwnBackgroundsTest::SetUp() {
    ServiceTest::SetUp();
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    Allow("ipcclient send message:1 error");
    fs::remove_all(Base());
    std::error_code ignored;
    fs::remove_all(OwnFolder(), ignored);
    fs::create_directories(OwnFolder());
    hubId_ = KindNotifier<MessageBoxKind>::GetInstance().Subscribe(
        0, [this](MessageBoxKind& kind) { kinds_.push_back(static_cast<int>(kind)); });
    MakeEmptyKey();
}

void OwnBackgroundsTest::TearDown() {
    model_.reset();
    KindNotifier<MessageBoxKind>::GetInstance().Unsubscribe(0, hubId_);
    fs::remove_all(Base());
    // A file that is still open is one test's failure, not that of all that follow.
    std::error_code error;
    fs::remove_all(OwnFolder(), error);
    EXPECT_FALSE(error) << error.message();
    CoUninitialize();
    ServiceTest::TearDown();
}

void OwnBackgroundsTest::Start(const std::wstring& userSid) {
    model_.reset();
    gallery_.clear();
    model_ = MakeModel();
    model_->SetAddCustomItem([this](const std::wstring& name, const wchar_t* path, bool isVideo) {
        gallery_.push_back({name, path, isVideo});
        return kBuiltIn + static_cast<int>(gallery_.size()) - 1;
    });
    model_->SetRemoveCustomItem([this](std::int32_t index, const std::wstring&) {
        const int cell = index - kBuiltIn;
        if (cell < 0 || cell >= static_cast<int>(gallery_.size())) {
            ADD_FAILURE() << "there is no cell " << index;
            return false;
        }
        gallery_.erase(gallery_.begin() + cell);
        return true;
    });
    HomeServiceTestAccess::LoadCustomImages(*model_, userSid);
}

std::wstring OwnBackgroundsTest::Media(const std::wstring& name) {
    return fs::absolute(name).wstring();
}

fs::path OwnBackgroundsTest::Own(const std::wstring& medium, const std::wstring& name) const {
    EXPECT_TRUE(CopyFileW(Media(medium).c_str(), (OwnFolder() / name).c_str(), FALSE)) << GetLastError();
    return OwnFolder() / name;
}

OwnBackgroundsTest::Records OwnBackgroundsTest::Saved() {
    return CustomImageGroup::Parse(Text(L"lumi_camera_custom_img_group"));
}

std::wstring OwnBackgroundsTest::Text(const std::wstring& name) {
    const auto value = Read(name);
    return value && std::holds_alternative<std::wstring>(*value) ? std::get<std::wstring>(*value) : std::wstring();
}

int OwnBackgroundsTest::Number(const std::wstring& name) {
    const auto value = Read(name);
    return value && std::holds_alternative<int>(*value) ? std::get<int>(*value) : -1;
}

std::vector<std::wstring> OwnBackgroundsTest::GalleryNames() const {
    std::vector<std::wstring> names;
    for (const Cell& cell : gallery_) {
        names.push_back(cell.name);
    }
    return names;
}

std::vector<int> OwnBackgroundsTest::TakeKinds() {
    return std::exchange(kinds_, {});
}

void OwnBackgroundsTest::ExpectAllAgree() {
    const Records& items = HomeServiceTestAccess::CustomItems(*model_);
    EXPECT_EQ(Saved(), items);
    ASSERT_EQ(gallery_.size(), items.size());
    for (std::size_t i = 0; i < items.size(); ++i) {
        EXPECT_EQ(gallery_[i], (Cell{items[i].name, items[i].thumbPath, items[i].isVideo != 0}));
        EXPECT_EQ(items[i].index, kBuiltIn + static_cast<int>(i));
        EXPECT_GT(Decode(items[i].thumbPath).width, 0u) << fs::path(items[i].thumbPath);
    }
}

OwnBackgroundsTest::Decoded OwnBackgroundsTest::Decode(const fs::path& path) {
    Held<IWICImagingFactory> factory;
    Held<IWICBitmapDecoder> decoder;
    Held<IWICBitmapFrameDecode> frame;
    Held<IWICFormatConverter> converter;
    Decoded picture;
    const bool decoded =
        SUCCEEDED(CoCreateInstance(CLSID_WICImagingFactory, nullptr, CLSCTX_INPROC_SERVER, IID_IWICImagingFactory,
                                   reinterpret_cast<void**>(factory.Put()))) &&
        SUCCEEDED(factory->CreateDecoderFromFilename(path.c_str(), nullptr, GENERIC_READ, WICDecodeMetadataCacheOnLoad,
                                                     decoder.Put())) &&
        SUCCEEDED(decoder->GetFrame(0, frame.Put())) && SUCCEEDED(frame->GetSize(&picture.width, &picture.height)) &&
        SUCCEEDED(factory->CreateFormatConverter(converter.Put())) &&
        SUCCEEDED(converter->Initialize(frame.Get(), GUID_WICPixelFormat32bppBGR, WICBitmapDitherTypeNone, nullptr, 0.0,
                                        WICBitmapPaletteTypeCustom));
    if (!decoded) {
        return {};
    }
    picture.pixels.resize(std::size_t{picture.width} * picture.height);
    const UINT stride = picture.width * 4;
    if (FAILED(converter->CopyPixels(nullptr, stride, stride * picture.height,
                                     reinterpret_cast<BYTE*>(picture.pixels.data())))) {
        return {};
    }
    for (std::uint32_t& pixel : picture.pixels) {
        pixel |= 0xFF000000;
    }
    return picture;
}

std::vector<char> OwnBackgroundsTest::Content(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

bool OwnBackgroundsTest::IsJpeg(const fs::path& path) {
    const std::vector<char> content = Content(path);
    return content.size() > 4 && content[0] == '\xFF' && content[1] == '\xD8';
}

bool OwnBackgroundsTest::IsBitmap(const fs::path& path) {
    const std::vector<char> content = Content(path);
    return content.size() > 54 && content[0] == 'B' && content[1] == 'M';
}

bool IsAbout(std::uint32_t pixel, std::uint32_t color) {
    constexpr int kTolerance = 12;
    for (int shift = 0; shift < 24; shift += 8) {
        const int difference = static_cast<int>(pixel >> shift & 0xFF) - static_cast<int>(color >> shift & 0xFF);
        if (std::abs(difference) > kTolerance) {
            return false;
        }
    }
    return true;
}
