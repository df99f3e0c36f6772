#include "preview/Device.h"

#include <mfapi.h>
#include <mferror.h>

#include <cstdlib>
#include <map>
#include <thread>

#include "suite/common/ComRelease.h"
#include "tests/windows/preview/Frames.h"
#include "tests/windows/preview/PreviewSupport.h"

using preview::PixelFormat;
using testing::ElementsAre;

namespace preview_test {
namespace {

constexpr HRESULT kInvalidMediaType = static_cast<HRESULT>(0xC00D36B4);
constexpr HRESULT kInvalidRequest = static_cast<HRESULT>(0xC00D36B2);
constexpr HRESULT kNoMoreTypes = static_cast<HRESULT>(0xC00D36B9);

// A renderer whose device a test can lose: a reset fails as long as something of the device is held, and a failed reset
// leaves the device in need of another one.
class LosableDevice : public Device {
  public:
    ~LosableDevice() override { ComRelease(held_); }

    void Lose() {
        ASSERT_EQ(Direct3DDevice()->CreateTexture(16, 16, 1, D3DUSAGE_RENDERTARGET, D3DFMT_X8R8G8B8, D3DPOOL_DEFAULT,
                                                  &held_, nullptr),
                  D3D_OK);
        D3DPRESENT_PARAMETERS parameters = {};
        parameters.Windowed = TRUE;
        parameters.BackBufferFormat = D3DFMT_X8R8G8B8;
        parameters.SwapEffect = D3DSWAPEFFECT_COPY;
        ASSERT_TRUE(FAILED(Direct3DDevice()->Reset(&parameters)));
        ASSERT_EQ(Direct3DDevice()->TestCooperativeLevel(), D3DERR_DEVICENOTRESET);
    }
    // From now on a reset may succeed.
    void LetGo() { ComRelease(held_); }
    IDirect3DDevice9* Current() const { return Direct3DDevice(); }

  private:
    IDirect3DTexture9* held_ = nullptr;
};

class DeviceTest : public PreviewTest {
  protected:
    // Opens, configures and draws, all of which has to succeed.
    void Draw(const Frame& frame, bool withStride = true) {
        IMFMediaType* type = TypeOf(frame, withStride);
        EXPECT_EQ(device_.ConfigureVideo(type), S_OK);
        ComRelease(type);
        IMFMediaBuffer* buffer = PlainBuffer(frame);
        EXPECT_EQ(device_.DrawSample(buffer), S_OK);
        ComRelease(buffer);
    }

    // The window is as large as the frame: each pixel of the screen is one of the mirrored frame.
    void ExpectShown(const TestWindow& window, const Frame& frame) {
        const std::vector<std::uint32_t> expected = MirroredPixels(frame);
        const Shot shot = WaitForShot(window.Get(), [&](const Shot& seen) { return seen.pixels == expected; });
        ASSERT_EQ(shot.pixels.size(), expected.size());
        int wrong = 0;
        for (std::size_t i = 0; i < expected.size(); ++i) {
            if (shot.pixels[i] != expected[i] && ++wrong <= 3) {
                ADD_FAILURE() << "at " << i % frame.width << "," << i / frame.width << " " << std::hex << shot.pixels[i]
                              << " instead of " << expected[i];
            }
        }
        EXPECT_EQ(wrong, 0);
    }

    LosableDevice device_;
};

TEST_F(DeviceTest, TheFormatTableHasItsOrderAndItsEnd) {
    GUID subtype = {};
    const GUID expected[] = {MFVideoFormat_RGB32, MFVideoFormat_RGB24, MFVideoFormat_YUY2, MFVideoFormat_NV12};
    for (UINT i = 0; i < 4; ++i) {
        EXPECT_EQ(device_.GetFormat(i, &subtype), S_OK);
        EXPECT_TRUE(IsEqualGUID(subtype, expected[i]));
        EXPECT_TRUE(device_.IsFormatSupported(expected[i]));
    }
    EXPECT_EQ(device_.GetFormat(4, &subtype), kNoMoreTypes);
    EXPECT_TRUE(IsEqualGUID(subtype, MFVideoFormat_NV12)) << "left alone past the end";
    EXPECT_FALSE(device_.IsFormatSupported(MFVideoFormat_MJPG));
}

TEST_F(DeviceTest, EveryFormatIsShownMirroredPixelByPixel) {
    const TestWindow window(128, 96);
    ASSERT_EQ(device_.Open(window.Get()), S_OK);
    for (const PixelFormat format :
         {PixelFormat::kRgb32, PixelFormat::kRgb24, PixelFormat::kYuy2, PixelFormat::kNv12}) {
        SCOPED_TRACE(static_cast<int>(format));
        const Frame frame = MakeFrame(format, 128, 96);
        Draw(frame);
        ExpectShown(window, frame);
    }
}

// The client area of the preview's window at 100, 150 and 200 %, one of them odd: frames as large, pixel by pixel, and
// frames of a camera's usual size, whose patches must lie where they belong.
TEST_F(DeviceTest, EveryFormatFillsThePreviewsWindowAtEveryScale) {
    for (const auto& [width, height] : {std::pair{596, 352}, {895, 529}, {1194, 706}}) {
        const TestWindow window(width, height);
        device_.Destroy();
        ASSERT_EQ(device_.Open(window.Get()), S_OK);
        for (const PixelFormat format :
             {PixelFormat::kRgb32, PixelFormat::kRgb24, PixelFormat::kYuy2, PixelFormat::kNv12}) {
            SCOPED_TRACE(testing::Message() << "format " << static_cast<int>(format) << " at " << width);
            const Frame frame =
                MakeFrame(format, static_cast<std::uint32_t>(width), static_cast<std::uint32_t>(height));
            Draw(frame);
            ExpectShown(window, frame);

            const Frame usual = MakeFrame(format, 640, 360);
            Draw(usual);
            const std::vector<std::uint32_t> pixels = MirroredPixels(usual);
            // As wide as the window by the rule of the box, or as high.
            const int boxHeight = MulDiv(width, 360, 640) <= height ? MulDiv(width, 360, 640) : height;
            const int boxWidth = boxHeight == height ? MulDiv(height, 640, 360) : width;
            const int left = (width - boxWidth) / 2, top = (height - boxHeight) / 2;
            const auto shows = [&](const Shot& seen) {
                // The middles of the mirrored patches, which are 16 wide and 12 high.
                for (int y = 6; y < 360; y += 12) {
                    for (int x = 8; x < 640; x += 16) {
                        if (!IsNear(seen.At(left + x * boxWidth / 640, top + y * boxHeight / 360),
                                    pixels[static_cast<std::size_t>(y * 640 + x)], 2)) {
                            return false;
                        }
                    }
                }
                return true;
            };
            EXPECT_TRUE(shows(WaitForShot(window.Get(), shows)));
        }
    }
}

TEST_F(DeviceTest, StridesOfPlainBuffers) {
    const TestWindow window(64, 48);
    ASSERT_EQ(device_.Open(window.Get()), S_OK);
    for (const PixelFormat format :
         {PixelFormat::kRgb32, PixelFormat::kRgb24, PixelFormat::kYuy2, PixelFormat::kNv12}) {
        SCOPED_TRACE(static_cast<int>(format));
        const Frame gaps = MakeFrame(format, 64, 48, 13);
        Draw(gaps);
        ExpectShown(window, gaps);
    }
    const Frame bottomUp = MakeFrame(PixelFormat::kRgb24, 64, 48, 4, true);
    Draw(bottomUp);
    ExpectShown(window, bottomUp);
}

TEST_F(DeviceTest, AStrideThatTheTypeDoesNotTellIsComputedAndWrittenBack) {
    const TestWindow window(64, 48);
    ASSERT_EQ(device_.Open(window.Get()), S_OK);
    for (const PixelFormat format :
         {PixelFormat::kRgb32, PixelFormat::kRgb24, PixelFormat::kYuy2, PixelFormat::kNv12}) {
        SCOPED_TRACE(static_cast<int>(format));
        // RGB is bottom-up by the platform's rule; how far apart its rows are is the platform's business too.
        LONG stride = 0;
        ASSERT_EQ(MFGetStrideForBitmapInfoHeader(SubtypeOf(format).Data1, 64, &stride), S_OK);
        EXPECT_EQ(stride < 0, format == PixelFormat::kRgb32 || format == PixelFormat::kRgb24);
        const Frame packed = MakeFrame(format, 64, 48);
        const Frame frame = MakeFrame(format, 64, 48, std::abs(stride) - packed.stride, stride < 0);
        IMFMediaType* type = TypeOf(frame, false);
        EXPECT_EQ(device_.ConfigureVideo(type), S_OK);
        UINT32 written = 0;
        EXPECT_EQ(type->GetUINT32(MF_MT_DEFAULT_STRIDE, &written), S_OK);
        EXPECT_EQ(static_cast<INT32>(written), stride);
        ComRelease(type);
        Draw(frame, false);
        ExpectShown(window, frame);
    }
}

TEST_F(DeviceTest, BuffersWithRowsOfTheirOwn) {
    const TestWindow window(64, 48);
    ASSERT_EQ(device_.Open(window.Get()), S_OK);
    for (const auto& [format, bottomUp] : {std::pair{PixelFormat::kRgb32, false},
                                           {PixelFormat::kRgb32, true},
                                           {PixelFormat::kYuy2, false},
                                           {PixelFormat::kNv12, false}}) {
        SCOPED_TRACE(static_cast<int>(format));
        const Frame frame = MakeFrame(format, 64, 48);
        IMFMediaType* type = TypeOf(frame);
        ASSERT_EQ(device_.ConfigureVideo(type), S_OK);
        ComRelease(type);
        IMFMediaBuffer* buffer = PlaneBuffer(frame, bottomUp);
        EXPECT_EQ(device_.DrawSample(buffer), S_OK);
        IMF2DBuffer* planes = nullptr;
        ASSERT_EQ(buffer->QueryInterface(IID_IMF2DBuffer, reinterpret_cast<void**>(&planes)), S_OK);
        EXPECT_TRUE(FAILED(planes->Unlock2D())) << "drawing left it locked";
        ComRelease(planes);
        ComRelease(buffer);
        ExpectShown(window, frame);
    }
}

TEST_F(DeviceTest, AWiderWindowGetsBlackBarsAndAScaledPicture) {
    const TestWindow window(320, 120);
    ASSERT_EQ(device_.Open(window.Get()), S_OK);
    const Frame frame = MakeFrame(PixelFormat::kRgb32, 64, 48);
    Draw(frame);
    const std::vector<std::uint32_t> expected = MirroredPixels(frame);
    // 160 x 120 at 80,0: each source pixel is 2.5 wide and high. The middle of each patch has its colour.
    const Shot shot =
        WaitForShot(window.Get(), [&](const Shot& seen) { return seen.At(90, 10) == expected[4 * 64 + 4]; });
    for (int y = 0; y < 120; ++y) {
        ASSERT_EQ(shot.At(0, y), 0u);
        ASSERT_EQ(shot.At(78, y), 0u);
        ASSERT_EQ(shot.At(241, y), 0u);
        ASSERT_EQ(shot.At(319, y), 0u);
        ASSERT_NE(shot.At(81, y), 0u);
        ASSERT_NE(shot.At(238, y), 0u);
    }
    for (std::uint32_t patchX = 0; patchX < 4; ++patchX) {
        for (std::uint32_t patchY = 0; patchY < 4; ++patchY) {
            const std::uint32_t x = 16 * patchX + 8, y = 12 * patchY + 6;
            EXPECT_TRUE(
                IsNear(shot.At(static_cast<int>(80 + x * 5 / 2), static_cast<int>(y * 5 / 2)), expected[y * 64 + x], 2))
                << x << "," << y;
        }
    }
}

TEST_F(DeviceTest, ThePixelAspectRatioShapesThePicture) {
    const TestWindow window(160, 120);
    ASSERT_EQ(device_.Open(window.Get()), S_OK);
    const Frame frame = MakeFrame(PixelFormat::kRgb32, 64, 48);
    IMFMediaBuffer* buffer = PlainBuffer(frame);
    // 4:3 -> 85 x 48, that is 160 x 90 with bars above and below; 3:4 -> 64 x 64, that is 120 x 120 with bars beside.
    const auto configure = [&](UINT32 numerator, UINT32 denominator) {
        IMFMediaType* type = TypeOf(frame);
        MFSetAttributeRatio(type, MF_MT_PIXEL_ASPECT_RATIO, numerator, denominator);
        EXPECT_EQ(device_.ConfigureVideo(type), S_OK);
        ComRelease(type);
        EXPECT_EQ(device_.DrawSample(buffer), S_OK);
    };
    configure(4, 3);
    Shot shot = WaitForShot(window.Get(), [](const Shot& seen) { return seen.At(80, 5) == 0 && seen.At(1, 60) != 0; });
    EXPECT_EQ(shot.At(80, 13), 0u);
    EXPECT_NE(shot.At(80, 17), 0u);
    EXPECT_NE(shot.At(80, 102), 0u);
    EXPECT_EQ(shot.At(80, 107), 0u);
    configure(3, 4);
    shot = WaitForShot(window.Get(), [](const Shot& seen) { return seen.At(80, 5) != 0 && seen.At(1, 60) == 0; });
    EXPECT_EQ(shot.At(18, 60), 0u);
    EXPECT_NE(shot.At(22, 60), 0u);
    EXPECT_NE(shot.At(137, 60), 0u);
    EXPECT_EQ(shot.At(141, 60), 0u);
    ComRelease(buffer);
}

TEST_F(DeviceTest, RefusesTypesItCannotDraw) {
    const TestWindow window(64, 48);
    ASSERT_EQ(device_.Open(window.Get()), S_OK);
    const Frame frame = MakeFrame(PixelFormat::kRgb32, 64, 48);
    IMFMediaBuffer* buffer = PlainBuffer(frame);
    EXPECT_EQ(device_.DrawSample(buffer), kInvalidRequest) << "nothing configured yet";

    const auto refused = [&](HRESULT expected, const std::function<void(IMFMediaType*)>& spoil) {
        Draw(frame);
        IMFMediaType* type = TypeOf(frame);
        spoil(type);
        EXPECT_EQ(device_.ConfigureVideo(type), expected);
        ComRelease(type);
        EXPECT_EQ(device_.DrawSample(buffer), kInvalidRequest) << "nothing stays configured";
    };
    refused(kInvalidMediaType, [](IMFMediaType* type) { type->SetGUID(MF_MT_SUBTYPE, MFVideoFormat_MJPG); });
    refused(MF_E_ATTRIBUTENOTFOUND, [](IMFMediaType* type) { type->DeleteItem(MF_MT_SUBTYPE); });
    refused(MF_E_ATTRIBUTENOTFOUND, [](IMFMediaType* type) { type->DeleteItem(MF_MT_FRAME_SIZE); });
    refused(kInvalidMediaType, [](IMFMediaType* type) { MFSetAttributeSize(type, MF_MT_FRAME_SIZE, 0, 48); });
    refused(kInvalidMediaType, [](IMFMediaType* type) { MFSetAttributeSize(type, MF_MT_FRAME_SIZE, 64, 0); });
    refused(kInvalidMediaType, [](IMFMediaType* type) { MFSetAttributeSize(type, MF_MT_FRAME_SIZE, 64, 0xFFFFFFFF); });
    ComRelease(buffer);
}

TEST_F(DeviceTest, ABufferThatIsTooShortIsDropped) {
    const TestWindow window(64, 48);
    ASSERT_EQ(device_.Open(window.Get()), S_OK);
    for (const PixelFormat format :
         {PixelFormat::kRgb32, PixelFormat::kRgb24, PixelFormat::kYuy2, PixelFormat::kNv12}) {
        const Frame frame = MakeFrame(format, 64, 48);
        Draw(frame);
        IMFMediaBuffer* buffer = PlainBuffer(frame);
        buffer->SetCurrentLength(static_cast<DWORD>(frame.bytes.size() - 1));
        EXPECT_EQ(device_.DrawSample(buffer), S_FALSE);
        buffer->SetCurrentLength(0);
        EXPECT_EQ(device_.DrawSample(buffer), S_FALSE);
        buffer->SetCurrentLength(static_cast<DWORD>(frame.bytes.size()));
        EXPECT_EQ(device_.DrawSample(buffer), S_OK);
        ComRelease(buffer);
    }
    // A bottom-up picture whose chroma would have to lie before the buffer.
    const Frame frame = MakeFrame(PixelFormat::kNv12, 64, 48);
    IMFMediaType* type = TypeOf(frame);
    type->SetUINT32(MF_MT_DEFAULT_STRIDE, static_cast<UINT32>(-64));
    EXPECT_EQ(device_.ConfigureVideo(type), S_OK);
    ComRelease(type);
    IMFMediaBuffer* buffer = PlainBuffer(frame);
    EXPECT_EQ(device_.DrawSample(buffer), S_FALSE);
    ComRelease(buffer);
    // Rows of its own, but of a smaller picture.
    const Frame large = MakeFrame(PixelFormat::kYuy2, 64, 48);
    Draw(large);
    IMFMediaBuffer* small = PlaneBuffer(MakeFrame(PixelFormat::kYuy2, 32, 24), false);
    EXPECT_EQ(device_.DrawSample(small), S_FALSE);
    ComRelease(small);
    const std::string line = "a buffer does not hold a frame of 64x48(Device::DrawSample)";
    EXPECT_EQ(TakeFailures(), std::vector(6, line)) << "each configured type's first one is told";
}

TEST_F(DeviceTest, WithoutADeviceFramesAreDropped) {
    const TestWindow window(64, 48);
    ASSERT_EQ(device_.Open(window.Get()), S_OK);
    EXPECT_EQ(device_.Open(window.Get()), S_OK) << "already open";
    const Frame frame = MakeFrame(PixelFormat::kNv12, 64, 48);
    Draw(frame);
    device_.Destroy();
    device_.Destroy();
    EXPECT_EQ(device_.Current(), nullptr);
    IMFMediaBuffer* buffer = PlainBuffer(frame);
    EXPECT_EQ(device_.DrawSample(buffer), S_OK);
    EXPECT_EQ(device_.Current(), nullptr) << "drawing does not open it again";
    ASSERT_EQ(device_.Open(window.Get()), S_OK);
    EXPECT_EQ(device_.DrawSample(buffer), S_OK) << "no swap chain yet";
    ComRelease(buffer);
    Draw(frame);
    ExpectShown(window, frame);
}

TEST_F(DeviceTest, ALostDeviceIsResetAndGoesOn) {
    const TestWindow window(128, 96);
    ASSERT_EQ(device_.Open(window.Get()), S_OK);
    Draw(MakeFrame(PixelFormat::kYuy2, 128, 96));
    const Frame next = MakeFrame(PixelFormat::kNv12, 128, 96);
    for (const bool resetWorks : {true, false}) {
        SCOPED_TRACE(resetWorks ? "reset" : "made anew");
        Draw(next);
        device_.Lose();
        if (resetWorks) {
            device_.LetGo();
        }
        IMFMediaBuffer* buffer = PlainBuffer(next);
        EXPECT_EQ(device_.DrawSample(buffer), S_OK);
        ComRelease(buffer);
        device_.LetGo();
        ASSERT_NE(device_.Current(), nullptr);
        EXPECT_EQ(device_.Current()->TestCooperativeLevel(), D3D_OK);
        ExpectShown(window, next);
    }
}

TEST_F(DeviceTest, ARefusedDeviceIsToldInABoxOnce) {
    const TestWindow window(64, 48);
    HWND gone = CreateWindowExW(0, L"STATIC", L"", WS_POPUP, 0, 0, 8, 8, nullptr, nullptr, nullptr, nullptr);
    DestroyWindow(gone);
    std::wstring text;
    std::atomic<int> boxes = 0;
    std::atomic<bool> done = false;
    std::thread closer([&] {
        while (!done) {
            HWND box = FindWindowW(L"#32770", L"d3d\u9519\u8bef");
            if (box != nullptr && IsWindowVisible(box)) {
                WCHAR shown[100] = {};
                GetWindowTextW(GetDlgItem(box, 0xFFFF), shown, 100);
                text = shown;
                ++boxes;
                SendMessageW(box, WM_COMMAND, IDOK, 0);
                while (IsWindow(box)) {
                    Sleep(1);
                }
            }
            Sleep(1);
        }
    });
    const HRESULT result = device_.Open(gone);
    done = true;
    closer.join();
    if (result == S_OK) {
        GTEST_SKIP() << "this system makes a device for a window that is gone";
    }
    // Which of its errors it is, is the system's business.
    const std::map<HRESULT, std::wstring> names = {{static_cast<HRESULT>(0x88760868), L"D3DERR_DEVICELOST"},
                                                   {static_cast<HRESULT>(0x8876086C), L"D3DERR_INVALIDCALL"},
                                                   {static_cast<HRESULT>(0x8876086A), L"D3DERR_NOTAVAILABLE"},
                                                   {static_cast<HRESULT>(0x8876017C), L"D3DERR_OUTOFVIDEOMEMORY"}};
    ASSERT_TRUE(names.contains(result)) << std::hex << result;
    EXPECT_EQ(boxes, 1);
    EXPECT_EQ(text, names.at(result));
    EXPECT_EQ(device_.Current(), nullptr);
    EXPECT_EQ(device_.Open(window.Get()), S_OK) << "another window may do";
}

TEST_F(DeviceTest, TheMirrorStepFollowsThePitch) {
    const TestWindow window(64, 48);
    ASSERT_EQ(device_.Open(window.Get()), S_OK);
    const Frame frame = MakeFrame(PixelFormat::kRgb32, 640, 480);
    Draw(frame);
    std::vector<std::uint8_t> bits(2816 * 480);
    for (std::size_t i = 0; i < bits.size(); ++i) {
        bits[i] = static_cast<std::uint8_t>(i * 13 + i / 256);
    }
    const std::vector<std::uint8_t> before = bits;
    D3DLOCKED_RECT locked = {2816, bits.data()};
    device_.MirrorState(&locked);
    for (std::size_t row = 0; row < 480; ++row) {
        const std::uint8_t* now = bits.data() + 2816 * row;
        const std::uint8_t* then = before.data() + 2816 * row;
        for (std::size_t column = 0; column < 640; ++column) {
            ASSERT_EQ(memcmp(now + 4 * column, then + 4 * (639 - column), 4), 0);
        }
        EXPECT_EQ(memcmp(now + 2560, then + 2560, 256), 0) << "padding";
    }
}

TEST_F(DeviceTest, TheMirrorStepTellsThatThereIsNothingLocked) {
    D3DLOCKED_RECT locked = {};
    device_.MirrorState(&locked);
    EXPECT_THAT(TakeFailures(), ElementsAre("Fail to get D3DLOCKED_RECT!(Device::MirrorState)"));
}

TEST_F(DeviceTest, SmallAndOddPicturesAreDrawn) {
    const TestWindow window(64, 48);
    ASSERT_EQ(device_.Open(window.Get()), S_OK);
    for (const PixelFormat format :
         {PixelFormat::kRgb32, PixelFormat::kRgb24, PixelFormat::kYuy2, PixelFormat::kNv12}) {
        for (const auto& [width, height] : {std::pair{1U, 1U}, {2U, 2U}, {3U, 5U}, {17U, 3U}, {161U, 121U}}) {
            Draw(MakeFrame(format, width, height));
        }
    }
}

TEST_F(DeviceTest, AWindowThatChangesItsSizeKeepsTheBox) {
    TestWindow window(160, 120);
    ASSERT_EQ(device_.Open(window.Get()), S_OK);
    const Frame frame = MakeFrame(PixelFormat::kYuy2, 160, 120);
    Draw(frame);
    window.Resize(80, 60);
    IMFMediaBuffer* buffer = PlainBuffer(frame);
    EXPECT_EQ(device_.DrawSample(buffer), S_OK);
    window.Resize(240, 200);
    EXPECT_EQ(device_.DrawSample(buffer), S_OK);
    ComRelease(buffer);
}

}  // namespace
}  // namespace preview_test
