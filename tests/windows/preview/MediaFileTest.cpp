// The readers of image and video files, and the bitmap writer, on files that are made here. The video files are made
// before the test, in its working folder.
#include <windows.h>

#include <wincodec.h>

#include <filesystem>
#include <fstream>

#include "preview/BitmapFile.h"
#include "preview/ImageReader.h"
#include "preview/VideoReader.h"
#include "suite/common/ComRelease.h"
#include "tests/windows/preview/PreviewSupport.h"

namespace fs = std::filesystem;
using testing::ElementsAre;

namespace preview_test {
namespace {

constexpr char kNoDecoder[] = "open error creatDecoder(ImageReader::Open)";
constexpr char kBadFormat[] = "open error pixelFormat not support(ImageReader::Open)";

class MediaFileTest : public PreviewTest {
  protected:
    MediaFileTest() : folder_(fs::temp_directory_path() / (L"pixora-media-" + std::to_wstring(GetCurrentProcessId()))) {
        fs::create_directories(folder_);
    }
    ~MediaFileTest() override {
        // A reader that still holds a file would be found here.
        std::error_code error;
        fs::remove_all(folder_, error);
        EXPECT_FALSE(error) << error.message();
    }

    std::wstring Path(const std::wstring& name) const { return (folder_ / name).wstring(); }

    // Writes a picture of one colour in that container and pixel format.
    std::wstring WriteImage(const std::wstring& name, const GUID& container, const WICPixelFormatGUID& format,
                            UINT width, UINT height) const {
        const std::wstring path = Path(name);
        IWICImagingFactory* factory = nullptr;
        IWICStream* stream = nullptr;
        IWICBitmapEncoder* encoder = nullptr;
        IWICBitmapFrameEncode* frame = nullptr;
        IWICPalette* palette = nullptr;
        EXPECT_EQ(CoCreateInstance(CLSID_WICImagingFactory, nullptr, CLSCTX_INPROC_SERVER, IID_IWICImagingFactory,
                                   reinterpret_cast<void**>(&factory)),
                  S_OK);
        EXPECT_EQ(factory->CreateStream(&stream), S_OK);
        EXPECT_EQ(stream->InitializeFromFilename(path.c_str(), GENERIC_WRITE), S_OK);
        EXPECT_EQ(factory->CreateEncoder(container, nullptr, &encoder), S_OK);
        EXPECT_EQ(encoder->Initialize(stream, WICBitmapEncoderNoCache), S_OK);
        EXPECT_EQ(encoder->CreateNewFrame(&frame, nullptr), S_OK);
        EXPECT_EQ(frame->Initialize(nullptr), S_OK);
        EXPECT_EQ(frame->SetSize(width, height), S_OK);
        WICPixelFormatGUID used = format;
        EXPECT_EQ(frame->SetPixelFormat(&used), S_OK);
        EXPECT_TRUE(IsEqualGUID(used, format)) << "the encoder does not write that format";
        if (IsEqualGUID(format, GUID_WICPixelFormat8bppIndexed)) {
            EXPECT_EQ(factory->CreatePalette(&palette), S_OK);
            EXPECT_EQ(palette->InitializePredefined(WICBitmapPaletteTypeFixedWebPalette, FALSE), S_OK);
            EXPECT_EQ(frame->SetPalette(palette), S_OK);
        }
        const UINT stride = width * 8;  // enough for every format
        std::vector<BYTE> rows(std::size_t{stride} * height, 0x55);
        EXPECT_EQ(frame->WritePixels(height, stride, static_cast<UINT>(rows.size()), rows.data()), S_OK);
        EXPECT_EQ(frame->Commit(), S_OK);
        EXPECT_EQ(encoder->Commit(), S_OK);
        ComRelease(palette);
        ComRelease(frame);
        ComRelease(encoder);
        ComRelease(stream);
        ComRelease(factory);
        return path;
    }

    std::wstring WriteText(const std::wstring& name) const {
        const std::wstring path = Path(name);
        std::ofstream(fs::path(path)) << "This is neither an image nor a video.\n";
        return path;
    }

    const fs::path folder_;
};

void ExpectOpens(const std::wstring& path, UINT width, UINT height) {
    ImageReader reader;
    EXPECT_TRUE(reader.Open(path));
    UINT seenWidth = 0, seenHeight = 0;
    EXPECT_TRUE(reader.GetSize(&seenWidth, &seenHeight));
    EXPECT_EQ(seenWidth, width);
    EXPECT_EQ(seenHeight, height);
    reader.Close();
    EXPECT_FALSE(reader.GetSize(&seenWidth, &seenHeight));
    reader.Close();
}

TEST_F(MediaFileTest, ImagesWithPlainPixelsOpen) {
    ExpectOpens(WriteImage(L"alpha.png", GUID_ContainerFormatPng, GUID_WICPixelFormat32bppBGRA, 31, 17), 31, 17);
    ExpectOpens(WriteImage(L"plain.png", GUID_ContainerFormatPng, GUID_WICPixelFormat24bppBGR, 640, 360), 640, 360);
    ExpectOpens(WriteImage(L"photo.jpg", GUID_ContainerFormatJpeg, GUID_WICPixelFormat24bppBGR, 65, 33), 65, 33);
    ExpectOpens(WriteImage(L"plain.bmp", GUID_ContainerFormatBmp, GUID_WICPixelFormat24bppBGR, 5, 7), 5, 7);
    ExpectOpens(WriteImage(L"wide.bmp", GUID_ContainerFormatBmp, GUID_WICPixelFormat32bppBGR, 5, 7), 5, 7);
}

TEST_F(MediaFileTest, ImagesWithOtherPixelsAreRefused) {
    const auto refused = [&](const std::wstring& path) {
        ImageReader reader;
        EXPECT_FALSE(reader.Open(path));
        EXPECT_THAT(TakeFailures(), ElementsAre(kBadFormat));
        UINT width = 0, height = 0;
        EXPECT_FALSE(reader.GetSize(&width, &height));
        EXPECT_TRUE(fs::remove(path)) << "the file is still open";
    };
    refused(WriteImage(L"palette.png", GUID_ContainerFormatPng, GUID_WICPixelFormat8bppIndexed, 16, 16));
    refused(WriteImage(L"grey.png", GUID_ContainerFormatPng, GUID_WICPixelFormat8bppGray, 16, 16));
    refused(WriteImage(L"grey.jpg", GUID_ContainerFormatJpeg, GUID_WICPixelFormat8bppGray, 16, 16));
    refused(WriteImage(L"deep.png", GUID_ContainerFormatPng, GUID_WICPixelFormat48bppRGB, 16, 16));
    refused(WriteImage(L"deep.tif", GUID_ContainerFormatTiff, GUID_WICPixelFormat48bppRGB, 16, 16));
}

TEST_F(MediaFileTest, WhatIsNoImageFailsAtTheDecoder) {
    ImageReader reader;
    for (const std::wstring& path : {WriteText(L"text.png"), Path(L"missing.png"), folder_.wstring(), std::wstring()}) {
        EXPECT_FALSE(reader.Open(path));
        EXPECT_THAT(TakeFailures(), ElementsAre(kNoDecoder));
    }
    const std::wstring image = WriteImage(L"cut.png", GUID_ContainerFormatPng, GUID_WICPixelFormat24bppBGR, 64, 64);
    fs::resize_file(image, 20);
    EXPECT_FALSE(reader.Open(image));
    EXPECT_EQ(TakeFailures().size(), 1u);
}

TEST_F(MediaFileTest, AReaderServesOneFileAfterTheOther) {
    ImageReader reader;
    for (const UINT side : {8u, 9u, 10u}) {
        const std::wstring path =
            WriteImage(L"next.png", GUID_ContainerFormatPng, GUID_WICPixelFormat24bppBGR, side, side + 1);
        ASSERT_TRUE(reader.Open(path));
        UINT width = 0, height = 0;
        EXPECT_TRUE(reader.GetSize(&width, &height));
        EXPECT_EQ(width, side);
        EXPECT_EQ(height, side + 1);
        reader.Close();
        EXPECT_TRUE(fs::remove(path)) << "the file is still open";
    }
}

TEST_F(MediaFileTest, VideosTellTheirFrameSize) {
    VideoReader reader;
    UINT width = 0, height = 0;
    EXPECT_FALSE(reader.GetFrameSize(&width, &height)) << "nothing is open";
    ASSERT_TRUE(reader.Open(L"small.mp4"));
    EXPECT_TRUE(reader.GetFrameSize(&width, &height));
    EXPECT_EQ(width, 320u);
    EXPECT_EQ(height, 240u);
    ASSERT_TRUE(reader.Open(L"wide.mov")) << "closes the first by itself";
    EXPECT_TRUE(reader.GetFrameSize(&width, &height));
    EXPECT_EQ(width, 640u);
    EXPECT_EQ(height, 360u);
    reader.Close();
    EXPECT_FALSE(reader.GetFrameSize(&width, &height));
    reader.Close();
}

TEST_F(MediaFileTest, WhatDeliversNoVideoIsRefused) {
    VideoReader reader;
    for (const std::wstring& path : {WriteText(L"text.mp4"), Path(L"missing.mp4"), std::wstring(L"sound.m4a")}) {
        EXPECT_FALSE(reader.Open(path));
        UINT width = 0, height = 0;
        EXPECT_FALSE(reader.GetFrameSize(&width, &height));
    }
    EXPECT_TRUE(reader.Open(L"small.mp4")) << "a refusal leaves the reader usable";
}

// A bitmap with a colour for each pixel, top row first.
HBITMAP MakeBitmap(int width, int height) {
    BITMAPINFO info = {};
    info.bmiHeader = {sizeof(BITMAPINFOHEADER), width, -height, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
    void* bits = nullptr;
    HBITMAP bitmap = CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
    auto* pixels = static_cast<DWORD*>(bits);
    for (int i = 0; i < width * height; ++i) {
        pixels[i] = static_cast<DWORD>(i * 2654435761U) & 0xFFFFFF;
    }
    return bitmap;
}

std::vector<std::uint8_t> ReadAll(const std::wstring& path) {
    std::ifstream file(fs::path(path), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

TEST_F(MediaFileTest, ABitmapIsStoredWithItsTrailingBytes) {
    HBITMAP bitmap = MakeBitmap(100, 50);
    const std::wstring path = Path(L"cover.jpg");
    std::ofstream(fs::path(path)) << std::string(100000, 'x');  // is overwritten
    ASSERT_TRUE(SaveBitmapToFile(bitmap, path));
    const std::vector<std::uint8_t> bytes = ReadAll(path);
    ASSERT_EQ(bytes.size(), 15068u);
    BITMAPFILEHEADER file = {};
    BITMAPINFOHEADER info = {};
    memcpy(&file, bytes.data(), 14);
    memcpy(&info, bytes.data() + 14, 40);
    EXPECT_EQ(file.bfType, 0x4D42);
    EXPECT_EQ(file.bfSize, 15054u);
    EXPECT_EQ(file.bfReserved1, 0);
    EXPECT_EQ(file.bfReserved2, 0);
    EXPECT_EQ(file.bfOffBits, 54u);
    EXPECT_EQ(info.biSize, 40u);
    EXPECT_EQ(info.biWidth, 100);
    EXPECT_EQ(info.biHeight, 50);
    EXPECT_EQ(info.biPlanes, 1);
    EXPECT_EQ(info.biBitCount, 24);
    EXPECT_EQ(info.biCompression, static_cast<DWORD>(BI_RGB));
    EXPECT_EQ(info.biSizeImage, 0u);
    EXPECT_EQ(info.biClrUsed, 0u);
    for (int y = 0; y < 50; ++y) {
        for (int x = 0; x < 100; ++x) {
            const DWORD pixel = static_cast<DWORD>((y * 100 + x) * 2654435761U) & 0xFFFFFF;
            const std::uint8_t* stored = bytes.data() + 54 + static_cast<std::size_t>(49 - y) * 300 + 3 * x;
            ASSERT_EQ(stored[0] | stored[1] << 8 | stored[2] << 16, static_cast<int>(pixel)) << x << "," << y;
        }
    }
    EXPECT_EQ(std::count(bytes.end() - 14, bytes.end(), 0), 14);
    DeleteObject(bitmap);
    // Whatever the name says, it is a bitmap, and readers take it as one.
    ExpectOpens(path, 100, 50);
}

TEST_F(MediaFileTest, SavingWhereNoFileCanBeIsRefused) {
    HBITMAP bitmap = MakeBitmap(3, 2);
    EXPECT_FALSE(SaveBitmapToFile(bitmap, Path(L"no such folder\\cover.jpg")));
    EXPECT_FALSE(SaveBitmapToFile(nullptr, Path(L"none.jpg")));
    const std::wstring path = Path(L"small.jpg");
    EXPECT_TRUE(SaveBitmapToFile(bitmap, path));
    EXPECT_EQ(ReadAll(path).size(), 14u + 54u + 24u);
    DeleteObject(bitmap);
}

TEST_F(MediaFileTest, SavingLeavesNothingBehind) {
    HBITMAP bitmap = MakeBitmap(320, 200);
    const std::wstring path = Path(L"again.jpg");
    ASSERT_TRUE(SaveBitmapToFile(bitmap, path));
    const DWORD gdiObjects = GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS);
    DWORD handles = 0, handlesLater = 0;
    GetProcessHandleCount(GetCurrentProcess(), &handles);
    for (int i = 0; i < 50; ++i) {
        ASSERT_TRUE(SaveBitmapToFile(bitmap, path));
        ASSERT_FALSE(SaveBitmapToFile(bitmap, Path(L"no such folder\\cover.jpg")));
    }
    EXPECT_LE(GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS), gdiObjects + 2);
    GetProcessHandleCount(GetCurrentProcess(), &handlesLater);
    EXPECT_LE(handlesLater, handles + 2);
    DeleteObject(bitmap);
}

}  // namespace
}  // namespace preview_test
