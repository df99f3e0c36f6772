// The renderer on a graphics system that keeps every rule: how it makes its device, what it does when that is lost, on
// which thread, and what it draws. The reader's thread is a thread of the test; the test's own owns the window.
#include <mfapi.h>
#include <mferror.h>

#include <algorithm>
#include <cstdlib>
#include <thread>

#include "preview/Device.h"
#include "suite/common/ComRelease.h"
#include "tests/support/doubles/BufferDouble.h"
#include "tests/support/doubles/GraphicsDouble.h"
#include "tests/support/doubles/Violations.h"
#include "tests/windows/preview/Frames.h"
#include "tests/windows/preview/PreviewSupport.h"

namespace preview_test {
namespace {

using doubles::BufferDouble;
using doubles::BufferShape;
using doubles::Graphics;
using doubles::GraphicsScript;
using doubles::Violations;
using preview::PixelFormat;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr HRESULT kInvalidRequest = static_cast<HRESULT>(0xC00D36B2);
constexpr int kWidth = 64;
constexpr int kHeight = 48;

class DeviceLossTest : public PreviewTest {
  protected:
    void SetUp() override {
        PreviewTest::SetUp();
        Graphics::Begin();
        Violations::Take();
    }
    void TearDown() override {
        device_.Destroy();
        EXPECT_THAT(Violations::Take(), IsEmpty());
        EXPECT_EQ(Graphics::Seen().objectsAlive, 0);
        EXPECT_EQ(Graphics::Seen().devicesAlive, 0);
        EXPECT_EQ(Graphics::Seen().chainsAlive, 0);
        PreviewTest::TearDown();
    }

    static void Change(const std::function<void(GraphicsScript&)>& change) { Graphics::Change(change); }
    void Open() {
        ASSERT_EQ(device_.Open(window_.Get()), S_OK);
        ASSERT_EQ(Configure(frame_), S_OK);
    }
    HRESULT Configure(const Frame& frame) {
        IMFMediaType* type = TypeOf(frame);
        const HRESULT result = device_.ConfigureVideo(type);
        ComRelease(type);
        return result;
    }
    // On the window's thread.
    HRESULT DrawHere(const Frame& frame) {
        IMFMediaBuffer* buffer = PlainBuffer(frame);
        const HRESULT result = device_.DrawSample(buffer);
        ComRelease(buffer);
        return result;
    }
    // On a thread of its own, as a reader does.
    HRESULT Draw(const Frame& frame) {
        HRESULT result = E_UNEXPECTED;
        std::thread([&] { result = DrawHere(frame); }).join();
        return result;
    }
    HRESULT Draw() { return Draw(frame_); }
    // The next try, each a second after the one before; with a new object of Direct3D where it wants one.
    HRESULT Recover() {
        const HRESULT result = TryToRecover();
        return result == S_FALSE && device_.WantsDirect3D() ? device_.RecoverWith(Device::CreateDirect3D()) : result;
    }
    HRESULT TryToRecover() { return device_.Recover(nowMs_ += 1000); }

    TestWindow window_{kWidth, kHeight};
    const Frame frame_ = MakeFrame(PixelFormat::kYuy2, kWidth, kHeight);
    Device device_;
    std::uint64_t nowMs_ = 5'000'000;
};

// --- making it

TEST_F(DeviceLossTest, IsMadeWithTheDescribedValues) {
    Open();
    const auto seen = Graphics::Seen();
    EXPECT_EQ(seen.sdkVersion, 32U);
    EXPECT_EQ(seen.behavior, 0x42U);
    EXPECT_EQ(seen.deviceParameters.BackBufferWidth, 0U);
    EXPECT_EQ(seen.deviceParameters.BackBufferHeight, 0U);
    EXPECT_EQ(seen.deviceParameters.BackBufferFormat, 22);
    EXPECT_EQ(seen.deviceParameters.BackBufferCount, 0U);
    EXPECT_EQ(seen.deviceParameters.SwapEffect, 3);
    EXPECT_EQ(seen.deviceParameters.PresentationInterval, 0x80000000U);
    EXPECT_EQ(seen.deviceParameters.Windowed, TRUE);
    EXPECT_EQ(seen.deviceParameters.hDeviceWindow, window_.Get());
    EXPECT_EQ(seen.deviceParameters.Flags, 0U);
    EXPECT_EQ(seen.chainParameters.BackBufferWidth, 64U);
    EXPECT_EQ(seen.chainParameters.BackBufferHeight, 48U);
    EXPECT_EQ(seen.chainParameters.BackBufferFormat, 22);
    EXPECT_EQ(seen.chainParameters.BackBufferCount, 2U);
    EXPECT_EQ(seen.chainParameters.SwapEffect, 2);
    EXPECT_EQ(seen.chainParameters.Windowed, TRUE);
    EXPECT_EQ(seen.chainParameters.hDeviceWindow, window_.Get());
    EXPECT_EQ(seen.chainParameters.Flags, 0x15U);
    EXPECT_EQ(seen.chainParameters.PresentationInterval, 0x80000000U);
    EXPECT_EQ(Draw(), S_OK);
    EXPECT_EQ(Graphics::Seen().lockFlags, 0x800U);
    EXPECT_EQ(Graphics::Seen().filter, 2);
    EXPECT_EQ(Graphics::Seen().fill, 0xFF000000U);
}

TEST_F(DeviceLossTest, EachDescribedRefusalIsToldInOneBox) {
    const std::pair<HRESULT, const wchar_t*> told[] = {
        {static_cast<HRESULT>(0x88760868), L"d3d错误: D3DERR_DEVICELOST"},
        {static_cast<HRESULT>(0x8876086C), L"d3d错误: D3DERR_INVALIDCALL"},
        {static_cast<HRESULT>(0x8876086A), L"d3d错误: D3DERR_NOTAVAILABLE"},
        {static_cast<HRESULT>(0x8876017C), L"d3d错误: D3DERR_OUTOFVIDEOMEMORY"}};
    for (const auto& [code, text] : told) {
        Graphics::Begin();
        Change([refusal = code](GraphicsScript& script) { script.createDevice = refusal; });
        EXPECT_EQ(device_.Open(window_.Get()), code);
        EXPECT_THAT(Graphics::Seen().boxes, ElementsAre(text));
        device_.Destroy();
    }
}

TEST_F(DeviceLossTest, OtherFailuresAreReturnedSilently) {
    const auto fails = [&](HRESULT expected, const std::function<void(GraphicsScript&)>& change) {
        Graphics::Begin();
        Change(change);
        EXPECT_EQ(device_.Open(window_.Get()), expected);
        EXPECT_THAT(Graphics::Seen().boxes, IsEmpty());
        EXPECT_EQ(Graphics::Seen().devices, 0);
        device_.Destroy();
    };
    fails(E_FAIL, [](GraphicsScript& script) { script.noDirect3D = true; });
    fails(D3DERR_NOTAVAILABLE, [](GraphicsScript& script) { script.displayMode = D3DERR_NOTAVAILABLE; });
    fails(D3DERR_NOTAVAILABLE, [](GraphicsScript& script) { script.deviceType = D3DERR_NOTAVAILABLE; });
    fails(E_ACCESSDENIED, [](GraphicsScript& script) { script.createDevice = E_ACCESSDENIED; });
}

TEST_F(DeviceLossTest, ARefusedSwapChainIsTheConfigurationsFailure) {
    ASSERT_EQ(device_.Open(window_.Get()), S_OK);
    Change([](GraphicsScript& script) { script.createSwapChain = D3DERR_OUTOFVIDEOMEMORY; });
    EXPECT_EQ(Configure(frame_), D3DERR_OUTOFVIDEOMEMORY);
    EXPECT_EQ(Draw(), kInvalidRequest) << "nothing is configured";
    EXPECT_FALSE(device_.IsLost());
}

// --- losing it

TEST_F(DeviceLossTest, WhoDrawsOnlyNoticesTheLoss) {
    Open();
    EXPECT_EQ(Draw(), S_OK);
    EXPECT_EQ(Graphics::Seen().presents, 1);
    Graphics::TakeDesktop();
    for (int i = 0; i < 100; ++i) {
        EXPECT_EQ(Draw(), S_OK) << "a frame that is dropped is no failure";
    }
    EXPECT_TRUE(device_.IsLost());
    EXPECT_EQ(Graphics::Seen().failedPresents, 1) << "the first one told";
    EXPECT_EQ(Graphics::Seen().levels, 0);
    EXPECT_EQ(Graphics::Seen().failedResets, 0);
    EXPECT_THAT(Graphics::Seen().boxes, IsEmpty());
}

TEST_F(DeviceLossTest, IsResetOnTheWindowsThreadWhenItCanBe) {
    Open();
    EXPECT_EQ(device_.Recover(1), S_OK) << "nothing is lost";
    Graphics::TakeDesktop();
    Draw();
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(Recover(), S_FALSE);
        EXPECT_TRUE(device_.IsLost());
    }
    EXPECT_EQ(Graphics::Seen().levels, 3);
    Graphics::GiveDesktopBack();
    EXPECT_EQ(Recover(), S_OK);
    EXPECT_FALSE(device_.IsLost());
    EXPECT_EQ(Graphics::Seen().resets, 1);
    EXPECT_EQ(Graphics::Seen().devices, 1) << "the same device";
    EXPECT_EQ(Graphics::Seen().chains, 2) << "the swap chain went before the reset";
    EXPECT_EQ(Draw(), S_OK);
    EXPECT_EQ(Graphics::Seen().presents, 1);
    EXPECT_EQ(Graphics::Seen().picture, MirroredPixels(frame_));
}

TEST_F(DeviceLossTest, IsAskedForOnceASecondAtMost) {
    Open();
    Graphics::TakeDesktop();
    Draw();
    EXPECT_EQ(device_.Recover(10'000), S_FALSE);
    EXPECT_EQ(device_.Recover(10'999), S_FALSE);
    EXPECT_EQ(Graphics::Seen().levels, 1);
    EXPECT_EQ(device_.Recover(11'000), S_FALSE);
    EXPECT_EQ(Graphics::Seen().levels, 2);
}

TEST_F(DeviceLossTest, APresentThatFailsOnceNeedsNoReset) {
    Open();
    Change([](GraphicsScript& script) { script.present = D3DERR_DEVICELOST; });
    EXPECT_EQ(Draw(), S_OK);
    EXPECT_TRUE(device_.IsLost());
    Change([](GraphicsScript& script) { script.present = S_OK; });
    EXPECT_EQ(Draw(), S_OK);
    EXPECT_EQ(Graphics::Seen().presents, 0) << "not before the device was asked";
    EXPECT_EQ(Recover(), S_OK);
    EXPECT_EQ(Graphics::Seen().resets, 0);
    EXPECT_EQ(Draw(), S_OK);
    EXPECT_EQ(Graphics::Seen().presents, 1);
}

TEST_F(DeviceLossTest, TheSizeOfTheWindowCountsAtEachReset) {
    Open();
    Graphics::TakeDesktop();
    Draw();
    window_.Resize(2 * kWidth, 2 * kHeight);
    Graphics::GiveDesktopBack();
    EXPECT_EQ(Recover(), S_OK);
    EXPECT_EQ(Graphics::Seen().resetParameters.BackBufferWidth, 0U);
    EXPECT_EQ(Graphics::Seen().resetParameters.BackBufferHeight, 0U);
    EXPECT_EQ(Graphics::Seen().resetParameters.BackBufferFormat, 22);
    EXPECT_EQ(Graphics::Seen().resetParameters.SwapEffect, 3);
    EXPECT_EQ(Draw(), S_OK);
    const RECT whole = {0, 0, 2 * kWidth, 2 * kHeight};
    EXPECT_TRUE(IsSame(Graphics::Seen().destination, whole));
    EXPECT_EQ(Graphics::Seen().presents, 1);
}

TEST_F(DeviceLossTest, ADeviceThatCannotBeResetIsMadeAnew) {
    Open();
    Graphics::TakeDesktop();
    Draw();
    Graphics::GiveDesktopBack();
    Change([](GraphicsScript& script) { script.reset = D3DERR_DRIVERINTERNALERROR; });
    EXPECT_EQ(Recover(), S_OK);
    EXPECT_EQ(Graphics::Seen().failedResets, 1);
    EXPECT_EQ(Graphics::Seen().devices, 2);
    EXPECT_EQ(Graphics::Seen().devicesAlive, 1);
    EXPECT_EQ(Draw(), S_OK);
    EXPECT_EQ(Graphics::Seen().presents, 1);
}

TEST_F(DeviceLossTest, ADeviceThatIsNotToBeHadYetIsWaitedForWithoutABox) {
    Open();
    Graphics::TakeDesktop();
    Draw();
    Graphics::GiveDesktopBack();
    Change([](GraphicsScript& script) {
        script.reset = D3DERR_DRIVERINTERNALERROR;
        script.createDevice = D3DERR_NOTAVAILABLE;
    });
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(Recover(), S_FALSE);
        EXPECT_EQ(Draw(), S_OK);
    }
    EXPECT_EQ(Graphics::Seen().devicesAlive, 0);
    EXPECT_EQ(Graphics::Seen().refusals, 4);
    Change([](GraphicsScript& script) { script.createDevice = S_OK; });
    EXPECT_EQ(Recover(), S_OK);
    EXPECT_EQ(Draw(), S_OK);
    EXPECT_EQ(Graphics::Seen().presents, 1);
    EXPECT_THAT(Graphics::Seen().boxes, IsEmpty());
}

TEST_F(DeviceLossTest, AfterFiveSecondsADeviceIsMadeOfANewObject) {
    Open();
    Graphics::TakeDesktop();
    Draw();
    Graphics::GiveDesktopBack(true);
    for (int second = 0; second < 5; ++second) {
        EXPECT_EQ(Recover(), S_FALSE);
        EXPECT_EQ(Graphics::Seen().objects, 1);
    }
    EXPECT_EQ(Recover(), S_OK);
    EXPECT_EQ(Graphics::Seen().objects, 2);
    EXPECT_EQ(Graphics::Seen().objectsAlive, 1);
    EXPECT_EQ(Draw(), S_OK);
    EXPECT_EQ(Graphics::Seen().presents, 1);
}

TEST_F(DeviceLossTest, EachFiveSecondsTheObjectIsNewAgain) {
    Open();
    Graphics::TakeDesktop();
    Draw();
    for (int second = 0; second < 12; ++second) {
        EXPECT_EQ(Recover(), S_FALSE);
    }
    EXPECT_EQ(Graphics::Seen().objects, 3);
}

TEST_F(DeviceLossTest, WithoutItsSwapChainADeviceIsNotBack) {
    Open();
    Graphics::TakeDesktop();
    Draw();
    Graphics::GiveDesktopBack();
    Change([](GraphicsScript& script) { script.createSwapChain = D3DERR_NOTAVAILABLE; });
    EXPECT_EQ(Recover(), S_FALSE);
    EXPECT_TRUE(device_.IsLost());
    EXPECT_EQ(Draw(), S_OK);
    Change([](GraphicsScript& script) { script.createSwapChain = D3DERR_OUTOFVIDEOMEMORY; });
    EXPECT_EQ(Recover(), D3DERR_OUTOFVIDEOMEMORY);
    Change([](GraphicsScript& script) { script.createSwapChain = S_OK; });
    EXPECT_EQ(Recover(), S_OK);
    EXPECT_EQ(Graphics::Seen().resets, 1);
    EXPECT_EQ(Draw(), S_OK);
    EXPECT_EQ(Graphics::Seen().presents, 1);
}

TEST_F(DeviceLossTest, TheNewObjectIsMadeByTheOwner) {
    Open();
    EXPECT_EQ(device_.RecoverWith(Device::CreateDirect3D()), S_OK) << "nothing is lost";
    EXPECT_EQ(Graphics::Seen().objectsAlive, 1);
    Graphics::TakeDesktop();
    Draw();
    Graphics::GiveDesktopBack(true);
    for (int second = 0; second < 5; ++second) {
        EXPECT_EQ(TryToRecover(), S_FALSE);
        EXPECT_FALSE(device_.WantsDirect3D());
    }
    EXPECT_EQ(device_.RecoverWith(Device::CreateDirect3D()), S_FALSE) << "none is wanted";
    EXPECT_EQ(Graphics::Seen().objectsAlive, 1);
    EXPECT_EQ(TryToRecover(), S_FALSE);
    EXPECT_TRUE(device_.WantsDirect3D());
    EXPECT_EQ(Graphics::Seen().objectsAlive, 0) << "the former one is given back before";
    EXPECT_EQ(device_.RecoverWith({}), S_FALSE) << "the system has none for now";
    EXPECT_TRUE(device_.WantsDirect3D());
    EXPECT_EQ(TryToRecover(), S_FALSE);
    EXPECT_EQ(device_.RecoverWith(Device::CreateDirect3D()), S_OK);
    EXPECT_FALSE(device_.WantsDirect3D());
    EXPECT_EQ(Graphics::Seen().objects, 4);
    EXPECT_EQ(Draw(), S_OK);
    EXPECT_EQ(Graphics::Seen().presents, 1);
}

TEST_F(DeviceLossTest, ANewObjectThatNeverComesIsNotWaitedForLonger) {
    Open();
    Graphics::TakeDesktop();
    Draw();
    Graphics::GiveDesktopBack();
    Change([](GraphicsScript& script) { script.reset = D3DERR_DRIVERINTERNALERROR; });
    for (int second = 0; second < 30; ++second) {
        ASSERT_EQ(TryToRecover(), S_FALSE) << second;
        ASSERT_TRUE(device_.WantsDirect3D());
    }
    EXPECT_EQ(TryToRecover(), D3DERR_DEVICELOST);
    EXPECT_EQ(Graphics::Seen().objects, 1);
}

TEST_F(DeviceLossTest, AfterHalfAMinuteItIsOver) {
    Open();
    Graphics::TakeDesktop();
    Draw();
    for (int second = 0; second < 30; ++second) {
        ASSERT_EQ(Recover(), S_FALSE) << second;
    }
    EXPECT_EQ(Recover(), D3DERR_NOTAVAILABLE);
    EXPECT_THAT(Graphics::Seen().boxes, IsEmpty());
}

TEST_F(DeviceLossTest, OneThatSaysItIsThereAndNeverShowsAFrameIsOverToo) {
    Open();
    Change([](GraphicsScript& script) { script.present = E_FAIL; });
    for (int second = 0; second <= 30; ++second) {
        EXPECT_EQ(Draw(), S_OK);
        ASSERT_EQ(Recover(), S_OK) << second;
    }
    EXPECT_EQ(Draw(), S_OK);
    EXPECT_EQ(Recover(), D3DERR_DEVICELOST);
    // A frame that came to the screen begins the count anew.
    Change([](GraphicsScript& script) { script.present = S_OK; });
}

TEST_F(DeviceLossTest, AFrameOnTheScreenBeginsTheCountAnew) {
    Open();
    for (int round = 0; round < 3; ++round) {
        Graphics::TakeDesktop();
        Draw();
        for (int second = 0; second < 20; ++second) {
            ASSERT_EQ(Recover(), S_FALSE) << second;
        }
        Graphics::GiveDesktopBack();
        EXPECT_EQ(Recover(), S_OK);
        EXPECT_EQ(Draw(), S_OK);
    }
    EXPECT_EQ(Graphics::Seen().presents, 3);
}

TEST_F(DeviceLossTest, AnythingElseEndsIt) {
    Open();
    Graphics::TakeDesktop();
    Draw();
    Graphics::GiveDesktopBack();
    Change([](GraphicsScript& script) {
        script.reset = D3DERR_DRIVERINTERNALERROR;
        script.createDevice = D3DERR_OUTOFVIDEOMEMORY;
    });
    EXPECT_EQ(Recover(), D3DERR_OUTOFVIDEOMEMORY);
    EXPECT_THAT(Graphics::Seen().boxes, IsEmpty());
}

TEST_F(DeviceLossTest, ALevelThatIsNoLossEndsIt) {
    Open();
    Change([](GraphicsScript& script) {
        script.present = E_FAIL;
        script.cooperativeLevel = D3DERR_DRIVERINTERNALERROR;
    });
    EXPECT_EQ(Draw(), S_OK);
    EXPECT_EQ(Recover(), D3DERR_DRIVERINTERNALERROR);
    EXPECT_EQ(DrawHere(frame_), D3DERR_DRIVERINTERNALERROR);
}

TEST_F(DeviceLossTest, ATypeThatComesWhileItIsLostIsDrawnAfterwards) {
    Open();
    Graphics::TakeDesktop();
    Draw();
    const Frame other = MakeFrame(PixelFormat::kNv12, 32, 24);
    EXPECT_EQ(Configure(other), S_OK);
    EXPECT_EQ(Draw(other), S_OK);
    Graphics::GiveDesktopBack();
    EXPECT_EQ(Recover(), S_OK);
    EXPECT_EQ(Draw(other), S_OK);
    EXPECT_EQ(Graphics::Seen().picture, MirroredPixels(other));
}

TEST_F(DeviceLossTest, ATypeThatComesWhileThereIsNoDeviceIsDrawnAfterwards) {
    Open();
    Graphics::TakeDesktop();
    Draw();
    Graphics::GiveDesktopBack();
    Change([](GraphicsScript& script) {
        script.reset = D3DERR_DRIVERINTERNALERROR;
        script.createDevice = D3DERR_NOTAVAILABLE;
    });
    EXPECT_EQ(Recover(), S_FALSE);
    const Frame other = MakeFrame(PixelFormat::kNv12, 32, 24);
    EXPECT_EQ(Configure(other), S_OK);
    Change([](GraphicsScript& script) { script.createDevice = S_OK; });
    EXPECT_EQ(Recover(), S_OK);
    EXPECT_EQ(Draw(other), S_OK);
    EXPECT_EQ(Graphics::Seen().picture, MirroredPixels(other));
}

TEST_F(DeviceLossTest, LostWhileTheCameraOpensItIsDrawnAfterwards) {
    ASSERT_EQ(device_.Open(window_.Get()), S_OK);
    Graphics::TakeDesktop();
    EXPECT_EQ(Configure(frame_), S_OK);
    EXPECT_TRUE(device_.IsLost());
    EXPECT_EQ(Draw(), S_OK);
    Graphics::GiveDesktopBack();
    EXPECT_EQ(Recover(), S_OK);
    EXPECT_EQ(Draw(), S_OK);
    EXPECT_EQ(Graphics::Seen().presents, 1);
}

TEST_F(DeviceLossTest, OnTheWindowsThreadDrawingFindsItAgainItself) {
    Open();
    Graphics::TakeDesktop();
    EXPECT_EQ(DrawHere(frame_), S_OK);
    EXPECT_EQ(Graphics::Seen().failedPresents, 0) << "it was asked before";
    EXPECT_EQ(Graphics::Seen().resets, 0);
    Graphics::GiveDesktopBack();
    EXPECT_EQ(DrawHere(frame_), S_OK);
    EXPECT_EQ(Graphics::Seen().resets, 1);
    EXPECT_EQ(Graphics::Seen().presents, 1);
    EXPECT_FALSE(device_.IsLost());
}

// --- drawing

TEST_F(DeviceLossTest, APresentThatFailsDoesNotEndThePreview) {
    Open();
    Change([](GraphicsScript& script) { script.present = E_FAIL; });
    for (const DWORD lastError : {0UL, 5UL, 0x7FFFFFFFUL}) {
        Change([&](GraphicsScript& script) { script.presentLastError = lastError; });
        EXPECT_EQ(Draw(), S_OK);
        EXPECT_EQ(Recover(), S_OK);
    }
    Change([](GraphicsScript& script) { script.presentLastError = 0x80000000UL; });
    EXPECT_EQ(Draw(), E_FAIL);
}

TEST_F(DeviceLossTest, ALossIsNoFailureWhateverTheLastErrorIs) {
    Open();
    Graphics::TakeDesktop();
    Change([](GraphicsScript& script) { script.presentLastError = 0x80000000UL; });
    EXPECT_EQ(Draw(), S_OK);
    EXPECT_TRUE(device_.IsLost());
}

TEST_F(DeviceLossTest, AStepThatFailsEndsTheDrawing) {
    Open();
    Change([](GraphicsScript& script) { script.colorFill = E_OUTOFMEMORY; });
    EXPECT_EQ(Draw(), E_OUTOFMEMORY);
    EXPECT_EQ(Graphics::Seen().presents, 0);
    EXPECT_THAT(Graphics::Seen().picture, IsEmpty());
}

TEST_F(DeviceLossTest, APitchOfMoreThanFourBytesAPixelIsMirroredByThePitch) {
    // Pixels of five bytes by the rule of the mirror step, as it always was: the rows are swapped in groups of five.
    Change([](GraphicsScript& script) { script.extraPitch = kWidth; });
    Open();
    EXPECT_EQ(Draw(), S_OK);
    std::vector<std::uint8_t> row(5 * kWidth);
    std::vector<std::uint32_t> plain(kWidth * kHeight);
    preview::ConvertersFor(frame_.format, preview::CpuLevel::kScalar)
        .plain(reinterpret_cast<std::uint8_t*>(plain.data()), 4 * kWidth, frame_.FirstRow(), frame_.stride, kWidth,
               kHeight);
    memcpy(row.data(), plain.data(), 4 * kWidth);
    for (int left = 0, right = kWidth - 1; left < right; ++left, --right) {
        std::swap_ranges(row.begin() + 5 * left, row.begin() + 5 * left + 5, row.begin() + 5 * right);
    }
    for (int x = 0; x < kWidth; ++x) {
        std::uint32_t pixel = 0;
        memcpy(&pixel, row.data() + 4 * x, 4);
        ASSERT_EQ(Graphics::Seen().picture.at(static_cast<std::size_t>(x)), pixel & 0xFFFFFF) << x;
    }
    EXPECT_NE(Graphics::Seen().picture, MirroredPixels(frame_));
}

TEST_F(DeviceLossTest, APitchWithPaddingIsMirroredToo) {
    Change([](GraphicsScript& script) { script.extraPitch = kWidth - 4; });
    Open();
    EXPECT_EQ(Draw(), S_OK);
    EXPECT_EQ(Graphics::Seen().picture, MirroredPixels(frame_));
}

TEST_F(DeviceLossTest, ANullRectangleIsToldAndPresented) {
    Change([](GraphicsScript& script) { script.lockGivesNull = true; });
    Open();
    EXPECT_EQ(Draw(), S_OK);
    EXPECT_THAT(TakeFailures(), ElementsAre("Fail to get D3DLOCKED_RECT!(Device::MirrorState)"));
    EXPECT_EQ(Graphics::Seen().presents, 1);
}

// --- the picture within the frame

TEST_F(DeviceLossTest, TheApertureIsThePicture) {
    ASSERT_EQ(device_.Open(window_.Get()), S_OK);
    const auto configure = [&](RECT aperture) {
        IMFMediaType* type = TypeOf(frame_);
        MFVideoArea area = {};
        area.OffsetX.value = static_cast<SHORT>(aperture.left);
        area.OffsetY.value = static_cast<SHORT>(aperture.top);
        area.Area = {aperture.right - aperture.left, aperture.bottom - aperture.top};
        type->SetBlob(MF_MT_MINIMUM_DISPLAY_APERTURE, reinterpret_cast<const UINT8*>(&area), sizeof area);
        EXPECT_EQ(device_.ConfigureVideo(type), S_OK);
        ComRelease(type);
        EXPECT_EQ(Draw(), S_OK);
    };
    // Mirrored: what is left out on the left of the frame is right on the surface.
    configure({10, 4, 50, 34});
    RECT source = {14, 4, 54, 34};
    RECT target = {0, 0, 64, 48};
    EXPECT_TRUE(IsSame(Graphics::Seen().source, source));
    EXPECT_TRUE(IsSame(Graphics::Seen().destination, target));
    // 64 x 40 of 64 x 48: bars above and below.
    configure({0, 0, 64, 40});
    source = {0, 0, 64, 40};
    target = {0, 4, 64, 44};
    EXPECT_TRUE(IsSame(Graphics::Seen().source, source));
    EXPECT_TRUE(IsSame(Graphics::Seen().destination, target));
    // One side alone is left out.
    for (const RECT& part : {RECT{4, 0, 64, 48}, RECT{0, 4, 64, 48}, RECT{0, 0, 60, 48}, RECT{0, 0, 64, 44}}) {
        configure(part);
        EXPECT_TRUE(IsSame(Graphics::Seen().source, {64 - part.right, part.top, 64 - part.left, part.bottom}));
    }
    // What does not lie within the frame is none.
    const RECT whole = {0, 0, 64, 48};
    for (const RECT& wrong : {RECT{0, 0, 65, 48}, RECT{0, 0, 64, 49}, RECT{-1, 0, 64, 48}, RECT{0, -1, 64, 48},
                              RECT{5, 5, 5, 48}, RECT{5, 5, 64, 5}, RECT{60, 0, 70, 48}, RECT{0, 40, 64, 60}}) {
        configure(wrong);
        EXPECT_TRUE(IsSame(Graphics::Seen().source, whole));
    }
}

// --- buffers with rows of their own

class FrameBufferTest : public DeviceLossTest {
  protected:
    // The rows of a frame without gaps.
    static std::vector<std::uint8_t> Rows(const Frame& frame, std::uint32_t rowBytes, std::uint32_t rows) {
        std::vector<std::uint8_t> bytes;
        for (std::uint32_t row = 0; row < rows; ++row) {
            const std::uint8_t* from = frame.FirstRow() + static_cast<std::ptrdiff_t>(row) * frame.stride;
            bytes.insert(bytes.end(), from, from + rowBytes);
        }
        return bytes;
    }
    static BufferShape ShapeOf(const Frame& frame) {
        BufferShape shape;
        shape.rowBytes = static_cast<std::uint32_t>(std::abs(frame.stride));
        shape.rows = frame.format == PixelFormat::kNv12 ? frame.height + (frame.height + 1) / 2 : frame.height;
        return shape;
    }
    HRESULT DrawBuffer(const Frame& frame, const BufferShape& shape) {
        const std::vector<std::uint8_t> rows = Rows(frame, shape.rowBytes, shape.rows);
        return DrawBytes(rows, shape);
    }
    HRESULT DrawBytes(const std::vector<std::uint8_t>& rows, const BufferShape& shape) {
        IMFMediaBuffer* buffer = BufferDouble::Make(shape, rows.data());
        const HRESULT result = device_.DrawSample(buffer);
        EXPECT_EQ(buffer->Release(), 0U) << "somebody holds the buffer";
        return result;
    }
    // Configures for that frame and draws it from such a buffer.
    void ExpectDrawn(const Frame& frame, const BufferShape& shape) {
        ASSERT_EQ(Configure(frame), S_OK);
        EXPECT_EQ(DrawBuffer(frame, shape), S_OK);
        EXPECT_EQ(Graphics::Seen().picture, MirroredPixels(frame));
    }
    void ExpectDropped(const Frame& agreed, const Frame& delivered, const BufferShape& shape) {
        ASSERT_EQ(Configure(agreed), S_OK);
        const int presents = Graphics::Seen().presents;
        EXPECT_EQ(DrawBuffer(delivered, shape), S_FALSE);
        EXPECT_EQ(Graphics::Seen().presents, presents);
        EXPECT_EQ(TakeFailures().size(), 1U);
    }
    void SetUp() override {
        DeviceLossTest::SetUp();
        ASSERT_EQ(device_.Open(window_.Get()), S_OK);
    }
};

TEST_F(FrameBufferTest, PaddedRowsInEitherOrderAreDrawn) {
    for (const PixelFormat format :
         {PixelFormat::kRgb32, PixelFormat::kRgb24, PixelFormat::kYuy2, PixelFormat::kNv12}) {
        for (const bool knowsBounds : {true, false}) {
            for (const bool bottomUp : {false, true}) {
                if (bottomUp && format == PixelFormat::kNv12) {
                    continue;
                }
                SCOPED_TRACE(testing::Message() << static_cast<int>(format) << knowsBounds << bottomUp);
                const Frame frame = MakeFrame(format, kWidth, kHeight, 0, bottomUp);
                BufferShape shape = ShapeOf(frame);
                shape.padding = 32;
                shape.bottomUp = bottomUp;
                shape.knowsBounds = knowsBounds;
                ExpectDrawn(frame, shape);
            }
        }
    }
}

TEST_F(FrameBufferTest, RowsWithoutPaddingAreReadWhereTheyLie) {
    for (const PixelFormat format :
         {PixelFormat::kRgb32, PixelFormat::kRgb24, PixelFormat::kYuy2, PixelFormat::kNv12}) {
        const Frame frame = MakeFrame(format, kWidth, kHeight);
        BufferShape shape = ShapeOf(frame);
        shape.lock = E_NOTIMPL;  // no packed copy is asked for
        ExpectDrawn(frame, shape);
        shape.knowsBounds = false;
        ExpectDrawn(frame, shape);
    }
    // The last row of chroma is that of one line.
    const Frame odd = MakeFrame(PixelFormat::kNv12, kWidth, kHeight - 1);
    BufferShape shape = ShapeOf(odd);
    shape.lock = E_NOTIMPL;
    ExpectDrawn(odd, shape);
    shape.knowsBounds = false;
    ExpectDrawn(odd, shape);
}

TEST_F(FrameBufferTest, LargeAndOddFramesAreDrawn) {
    for (const auto& [width, height] : {std::pair{3840U, 2160U}, {1920U, 1080U}, {161U, 121U}, {17U, 3U}, {2U, 2U}}) {
        SCOPED_TRACE(width);
        const Frame frame = MakeFrame(PixelFormat::kRgb32, width, height);
        BufferShape shape = ShapeOf(frame);
        shape.padding = 64;
        ExpectDrawn(frame, shape);
        const Frame planes = MakeFrame(PixelFormat::kNv12, width & ~1U, height & ~1U);
        ExpectDrawn(planes, ShapeOf(planes));
    }
}

TEST_F(FrameBufferTest, ABufferWithEnoughBytesAndAnotherShapeIsDropped) {
    const Frame agreed = MakeFrame(PixelFormat::kYuy2, 640, 480);
    for (const auto& [width, height] : {std::pair{800U, 400U}, {800U, 384U}, {320U, 960U}}) {
        for (const bool knowsBounds : {true, false}) {
            SCOPED_TRACE(testing::Message() << width << knowsBounds);
            const Frame delivered = MakeFrame(PixelFormat::kYuy2, width, height);
            BufferShape shape = ShapeOf(delivered);
            shape.knowsBounds = knowsBounds;
            if (width == 800 && height == 384 && !knowsBounds) {
                // As many bytes: nobody can tell. But nothing is read that is not there.
                ASSERT_EQ(Configure(agreed), S_OK);
                DrawBuffer(delivered, shape);
                TakeFailures();
                continue;
            }
            ExpectDropped(agreed, delivered, shape);
        }
    }
}

TEST_F(FrameBufferTest, ARowTooFewIsDropped) {
    for (const PixelFormat format :
         {PixelFormat::kRgb32, PixelFormat::kRgb24, PixelFormat::kYuy2, PixelFormat::kNv12}) {
        for (const bool knowsBounds : {true, false}) {
            for (const std::uint32_t padding : {0U, 16U}) {
                SCOPED_TRACE(testing::Message() << static_cast<int>(format) << knowsBounds << padding);
                const Frame frame = MakeFrame(format, kWidth, kHeight);
                BufferShape shape = ShapeOf(frame);
                shape.padding = padding;
                shape.knowsBounds = knowsBounds;
                --shape.rows;
                ExpectDropped(frame, frame, shape);
            }
        }
    }
}

TEST_F(FrameBufferTest, ADroppedBufferIsToldOnceForEachType) {
    ASSERT_EQ(Configure(frame_), S_OK);
    BufferShape shape = ShapeOf(frame_);
    --shape.rows;
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(DrawBuffer(frame_, shape), S_FALSE);
    }
    EXPECT_THAT(TakeFailures(), ElementsAre("a buffer does not hold a frame of 64x48(Device::DrawSample)"));
    ASSERT_EQ(Configure(frame_), S_OK);
    EXPECT_EQ(DrawBuffer(frame_, shape), S_FALSE);
    EXPECT_EQ(TakeFailures().size(), 1U);
}

TEST_F(FrameBufferTest, ABufferThatDoesNotTellItsLengthIsDrawnAsAPackedCopy) {
    const Frame frame = MakeFrame(PixelFormat::kYuy2, kWidth, kHeight);
    BufferShape shape = ShapeOf(frame);
    shape.knowsBounds = false;
    shape.contiguousLength = E_NOTIMPL;
    ExpectDrawn(frame, shape);
}

TEST_F(FrameBufferTest, APackedCopyWithARowMoreIsOfAnotherShape) {
    const Frame frame = MakeFrame(PixelFormat::kYuy2, kWidth, kHeight);
    const Frame higher = MakeFrame(PixelFormat::kYuy2, kWidth, kHeight + 1);
    BufferShape shape = ShapeOf(higher);
    shape.knowsBounds = false;
    shape.contiguousLength = E_NOTIMPL;
    ExpectDropped(frame, higher, shape);
}

TEST_F(FrameBufferTest, WhereOneWayFailsTheNextIsTaken) {
    const Frame frame = MakeFrame(PixelFormat::kYuy2, kWidth, kHeight);
    BufferShape shape = ShapeOf(frame);
    shape.padding = 8;
    shape.lock2DSize = E_NOTIMPL;
    ExpectDrawn(frame, shape);
    shape.lock2D = E_NOTIMPL;
    ExpectDrawn(frame, shape);
    shape.lock = E_ACCESSDENIED;
    EXPECT_EQ(DrawBuffer(frame, shape), E_ACCESSDENIED);
}

// 1088 lines in memory, of which 1080 are the frame: the chroma begins behind all of them.
TEST_F(FrameBufferTest, LinesBetweenPictureAndChromaAreLeftOut) {
    const Frame frame = MakeFrame(PixelFormat::kNv12, 192, 108);
    BufferShape shape = ShapeOf(frame);
    shape.spareRows = 8;
    shape.rowsBeforeSpare = 108;
    ExpectDrawn(frame, shape);
    // The chroma of a frame that has more lines than the type says lies nobody knows where.
    const Frame taller = MakeFrame(PixelFormat::kNv12, 192, 116);
    ExpectDropped(frame, taller, ShapeOf(taller));
    BufferShape withoutBounds = ShapeOf(taller);
    withoutBounds.knowsBounds = false;
    ExpectDropped(frame, taller, withoutBounds);
}

TEST_F(FrameBufferTest, BuffersAreUnlockedWhateverHappens) {
    // The double notes what is released while it is locked; here the drawing itself fails.
    ASSERT_EQ(Configure(frame_), S_OK);
    Change([](GraphicsScript& script) { script.colorFill = E_OUTOFMEMORY; });
    EXPECT_EQ(DrawBuffer(frame_, ShapeOf(frame_)), E_OUTOFMEMORY);
    BufferShape packed = ShapeOf(frame_);
    packed.padding = 4;
    packed.knowsBounds = false;
    EXPECT_EQ(DrawBuffer(frame_, packed), E_OUTOFMEMORY);
}

}  // namespace
}  // namespace preview_test
