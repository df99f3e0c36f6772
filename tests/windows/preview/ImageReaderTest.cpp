// Each step in which the opening of a picture may fail: the system's own objects, one function of which fails. There is
// no file with which they do.
#include "preview/ImageReader.h"

#include <windows.h>

#include <wincodec.h>

#include <array>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/ImportHook.h"
#include "tests/windows/preview/PreviewSupport.h"

using testing::ElementsAre;

namespace preview_test {
namespace {

enum class Step { kNone, kFactory, kFrame, kSize, kFormat };
Step g_fails = Step::kNone;

// The functions of one kind of object, in the order of its interface; another one stands at `place`.
template <std::size_t count, std::size_t place>
class Functions {
  public:
    // The object keeps them as long as it lives.
    void Take(void* object, void* function) {
        auto& functions = *static_cast<void***>(object);
        original_ = functions[place];
        std::memcpy(functions_.data(), functions, sizeof functions_);
        functions_[place] = function;
        functions = functions_.data();
    }
    template <typename Function>
    Function Original() const {
        return reinterpret_cast<Function>(original_);
    }

  private:
    std::array<void*, count> functions_{};
    void* original_ = nullptr;
};

Functions<28, 3> g_factory;      // IWICImagingFactory: CreateDecoderFromFilename
Functions<14, 13> g_decoder;     // IWICBitmapDecoder: GetFrame
Functions<11, 3> g_frameSize;    // IWICBitmapFrameDecode: GetSize
Functions<11, 4> g_framePixels;  // IWICBitmapFrameDecode: GetPixelFormat

using CreateDecoder = HRESULT(STDMETHODCALLTYPE*)(void*, LPCWSTR, const GUID*, DWORD, WICDecodeOptions, void**);
using GetFrame = HRESULT(STDMETHODCALLTYPE*)(void*, UINT, void**);
using GetSize = HRESULT(STDMETHODCALLTYPE*)(void*, UINT*, UINT*);
using GetPixelFormat = HRESULT(STDMETHODCALLTYPE*)(void*, GUID*);

HRESULT STDMETHODCALLTYPE Size(void* self, UINT* width, UINT* height) {
    return g_fails == Step::kSize ? E_FAIL : g_frameSize.Original<GetSize>()(self, width, height);
}

HRESULT STDMETHODCALLTYPE PixelFormat(void* self, GUID* format) {
    return g_fails == Step::kFormat ? E_FAIL : g_framePixels.Original<GetPixelFormat>()(self, format);
}

HRESULT STDMETHODCALLTYPE Frame(void* self, UINT index, void** frame) {
    EXPECT_EQ(index, 0u);
    if (g_fails == Step::kFrame) {
        return E_FAIL;
    }
    const HRESULT result = g_decoder.Original<GetFrame>()(self, index, frame);
    if (result == S_OK) {
        g_framePixels.Take(*frame, reinterpret_cast<void*>(&PixelFormat));
        g_frameSize.Take(*frame, reinterpret_cast<void*>(&Size));
    }
    return result;
}

HRESULT STDMETHODCALLTYPE Decoder(void* self, LPCWSTR path, const GUID* vendor, DWORD access, WICDecodeOptions options,
                                  void** decoder) {
    EXPECT_EQ(access, DWORD{GENERIC_READ});
    const HRESULT result = g_factory.Original<CreateDecoder>()(self, path, vendor, access, options, decoder);
    if (result == S_OK) {
        g_decoder.Take(*decoder, reinterpret_cast<void*>(&Frame));
    }
    return result;
}

decltype(&CoCreateInstance) g_create;
IUnknown* g_made = nullptr;  // the factory that was made last; a reference of the test's

HRESULT WINAPI Create(REFCLSID kind, IUnknown* outer, DWORD context, REFIID iid, void** object) {
    if (g_fails == Step::kFactory) {
        return E_FAIL;
    }
    const HRESULT result = g_create(kind, outer, context, iid, object);
    if (result == S_OK) {
        g_made = static_cast<IUnknown*>(*object);
        g_made->AddRef();
        g_factory.Take(*object, reinterpret_cast<void*>(&Decoder));
    }
    return result;
}

class ImageReaderTest : public PreviewTest {
  protected:
    ImageReaderTest() {
        g_create = hook_.Original<decltype(&CoCreateInstance)>();
        wchar_t folder[MAX_PATH] = {};
        GetTempPathW(MAX_PATH, folder);
        path_ = folder + (L"pixora-steps-" + std::to_wstring(GetCurrentProcessId()) + L".bmp");
        WriteBitmap();
    }
    ~ImageReaderTest() override {
        g_fails = Step::kNone;
        EXPECT_TRUE(DeleteFileW(path_.c_str())) << "the file is still open";
    }

    // Opens it with that step failing; the lines of the log.
    std::vector<std::string> OpenWithout(Step step) {
        g_fails = step;
        ImageReader reader;
        EXPECT_FALSE(reader.Open(path_));
        ExpectGivenBack();
        return TakeFailures();
    }

    // Nobody else holds the factory any more.
    static void ExpectGivenBack() {
        IUnknown* made = std::exchange(g_made, nullptr);
        EXPECT_TRUE(made == nullptr || made->Release() == 0);
    }

    std::wstring path_;

  private:
    // Two pixels of 24 bits.
    void WriteBitmap() const {
        BITMAPFILEHEADER file{};
        BITMAPINFOHEADER info{};
        file.bfType = 0x4D42;
        file.bfOffBits = 14 + sizeof info;
        file.bfSize = file.bfOffBits + 8;
        info.biSize = sizeof info;
        info.biWidth = 2;
        info.biHeight = 1;
        info.biPlanes = 1;
        info.biBitCount = 24;
        std::string bytes(reinterpret_cast<const char*>(&file), 14);
        bytes.append(reinterpret_cast<const char*>(&info), sizeof info).append(8, 'x');
        FILE* out = _wfopen(path_.c_str(), L"wb");
        ASSERT_NE(out, nullptr);
        EXPECT_EQ(std::fwrite(bytes.data(), 1, bytes.size(), out), bytes.size());
        std::fclose(out);
    }

    const harness::ImportHook hook_{nullptr, "CoCreateInstance", &Create};
};

TEST_F(ImageReaderTest, EachStepHasItsLine) {
    EXPECT_THAT(OpenWithout(Step::kFactory), ElementsAre("open error creatInstance-2147467259(ImageReader::Open)"));
    EXPECT_THAT(OpenWithout(Step::kFrame), ElementsAre("open error getFrame(ImageReader::Open)"));
    EXPECT_THAT(OpenWithout(Step::kSize), ElementsAre("open error getSize(ImageReader::Open)"));
    EXPECT_THAT(OpenWithout(Step::kFormat), ElementsAre("open error GetPixelFormat(ImageReader::Open)"));
}

TEST_F(ImageReaderTest, ASizeThatIsNotToldAnyMoreIsNone) {
    ImageReader reader;
    ASSERT_TRUE(reader.Open(path_));
    UINT width = 7, height = 7;
    g_fails = Step::kSize;
    EXPECT_FALSE(reader.GetSize(&width, &height));
    EXPECT_EQ(width, 7u);
    g_fails = Step::kNone;
    EXPECT_TRUE(reader.GetSize(&width, &height));
    EXPECT_EQ(width, 2u);
    EXPECT_EQ(height, 1u);
    reader.Close();
    ExpectGivenBack();
}

}  // namespace
}  // namespace preview_test
