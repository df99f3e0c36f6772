// The preview with cameras that exist in memory: choosing, opening, agreeing on a format, reading, failing, closing.
#include <mfapi.h>
#include <mferror.h>

#include "suite/common/ComRelease.h"
#include "tests/windows/preview/CaptureSupport.h"

using democamera::CameraFaults;
using democamera::CameraFormat;
using democamera::CameraSettings;
using testing::ElementsAre;
using testing::IsEmpty;

namespace preview_test {
namespace {

constexpr std::uint32_t kRed = 0xFF0000;
constexpr std::uint32_t kBlue = 0x0000FF;
constexpr HRESULT kBusy = static_cast<HRESULT>(0xC00D3704);

constexpr char kNoDevice[] = "can not find any video device!(Preview::SelectDevice)";
constexpr char kNoValidDevice[] = "can not find any valid video device!(Preview::SelectDevice)";
constexpr char kSourceError[] = "create device source error!(Preview::CreateDeviceSource)";
constexpr char kReaderError[] = "create source reader error!(Preview::CreateDeviceSource)";
constexpr char kStartError[] = "create device source error!(Preview::Start)";

// Mirrored: what is left in the camera's picture is right on the screen.
bool ShowsMirrored(const Shot& shot, std::uint32_t left, std::uint32_t right) {
    const int y = shot.height / 2;
    return IsNear(shot.At(shot.width / 4, y), right, 6) && IsNear(shot.At(shot.width * 3 / 4, y), left, 6);
}

CameraSettings WithLink(CameraSettings settings, const std::wstring& link) {
    settings.symbolicLink = link;
    return settings;
}

TEST_F(CaptureTest, MissingArgumentsCreateNothing) {
    constexpr HRESULT kPointer = static_cast<HRESULT>(0x80004003);
    Preview* preview = nullptr;
    EXPECT_EQ(Preview::CreateInstance(nullptr, window_.Get(), &preview), kPointer);
    EXPECT_EQ(Preview::CreateInstance(window_.Get(), nullptr, &preview), kPointer);
    EXPECT_EQ(Preview::CreateInstance(window_.Get(), window_.Get(), nullptr), kPointer);
    EXPECT_EQ(preview, nullptr);
}

TEST_F(CaptureTest, TellsItsInterfaces) {
    const RunningPreview preview(window_);
    void* object = nullptr;
    EXPECT_EQ(preview->QueryInterface(IID_IMFSourceReaderCallback, &object), S_OK);
    EXPECT_EQ(preview->Release(), 1u);
    EXPECT_EQ(preview->QueryInterface(IID_IUnknown, &object), S_OK);
    EXPECT_EQ(preview->Release(), 1u);
    EXPECT_EQ(preview->QueryInterface(IID_IMFMediaSource, &object), E_NOINTERFACE);
}

TEST_F(CaptureTest, WithoutAUsableCameraTheLogTellsWhy) {
    const RunningPreview preview(window_);
    EXPECT_FALSE(preview->Start(0));
    EXPECT_THAT(TakeFailures(), ElementsAre(kNoDevice));

    UseCameras({WithLink(SmallCamera(), kOtherLink), WithLink(SmallCamera(), L"")});
    EXPECT_FALSE(preview->Start(0));
    EXPECT_THAT(TakeFailures(), ElementsAre(kNoValidDevice));
    EXPECT_EQ(cameras_[0]->Seen().opened, 0);
    EXPECT_EQ(cameras_[1]->Seen().opened, 0);

    democamera::SetEnumerationResult(E_FAIL);
    EXPECT_FALSE(preview->Start(0));
    EXPECT_THAT(TakeFailures(), ElementsAre("enum device error!(Preview::SelectDevice)"));
    EXPECT_EQ(preview->State(), 0u);
}

TEST_F(CaptureTest, TheFirstAllowedCameraOfTheListIsOpened) {
    UseCameras({WithLink(SmallCamera(), kOtherLink), WithLink(SmallCamera(), L""),
                WithLink(SmallCamera(), L"\\\\?\\usb#vid_5858&pid_1"), WithLink(SmallCamera(), kAllowedLink)});
    const RunningPreview preview(window_);
    EXPECT_TRUE(preview->Start(0));
    EXPECT_EQ(preview->State(), 1u);
    EXPECT_TRUE(WaitForFrames(3, 2));
    EXPECT_EQ(cameras_[0]->Seen().opened, 0);
    EXPECT_EQ(cameras_[1]->Seen().opened, 0);
    EXPECT_EQ(cameras_[3]->Seen().opened, 0);
}

TEST_F(CaptureTest, EveryFormatComesToTheScreenMirrored) {
    for (const CameraFormat format :
         {CameraFormat::kRgb32, CameraFormat::kRgb24, CameraFormat::kYuy2, CameraFormat::kNv12}) {
        SCOPED_TRACE(static_cast<int>(format));
        UseCamera(TwoColors(SmallCamera(format), kRed, kBlue));
        RunningPreview preview(window_);
        ASSERT_TRUE(preview->Start(0));
        const Shot shot = WaitForShot(window_.Get(), [](const Shot& seen) { return ShowsMirrored(seen, kRed, kBlue); });
        EXPECT_TRUE(ShowsMirrored(shot, kRed, kBlue));
        preview.Finish();
    }
    EXPECT_THAT(window_.Events(), IsEmpty());
}

TEST_F(CaptureTest, CamerasWithOddLayouts) {
    std::vector<democamera::CameraMode> modes;
    for (const CameraFormat format :
         {CameraFormat::kRgb32, CameraFormat::kRgb24, CameraFormat::kYuy2, CameraFormat::kNv12}) {
        democamera::CameraMode mode = SmallCamera(format).modes.front();
        mode.extraStrideBytes = 20;
        modes.push_back(mode);
        mode.bottomUp = true;
        if (format != CameraFormat::kNv12) {
            modes.push_back(mode);
        }
    }
    for (const democamera::CameraMode& mode : modes) {
        CameraSettings settings = TwoColors(SmallCamera(), kRed, kBlue);
        settings.modes = {mode};
        UseCamera(settings);
        const RunningPreview preview(window_);
        ASSERT_TRUE(preview->Start(0));
        const Shot shot = WaitForShot(window_.Get(), [](const Shot& seen) { return ShowsMirrored(seen, kRed, kBlue); });
        EXPECT_TRUE(ShowsMirrored(shot, kRed, kBlue));
    }
}

TEST_F(CaptureTest, ACameraWithACompressedTypeIsOfferedTheFormatsInTheirOrder) {
    // The platform accepts what the camera has itself; so what is accepted first is what was offered first.
    using democamera::CameraMode;
    const auto mode = [](CameraFormat format) { return SmallCamera(format).modes.front(); };
    std::vector<CameraMode> modes = {mode(CameraFormat::kMjpg), mode(CameraFormat::kNv12), mode(CameraFormat::kYuy2),
                                     mode(CameraFormat::kRgb24), mode(CameraFormat::kRgb32)};
    for (int accepted = 4; accepted >= 1; --accepted) {
        CameraSettings settings = TwoColors(SmallCamera(), kRed, kBlue);
        settings.modes = modes;
        UseCamera(settings);
        const RunningPreview preview(window_);
        ASSERT_TRUE(preview->Start(0));
        EXPECT_TRUE(WaitForFrames(1));
        EXPECT_EQ(cameras_[0]->Seen().mode, accepted);
        const Shot shot = WaitForShot(window_.Get(), [](const Shot& seen) { return ShowsMirrored(seen, kRed, kBlue); });
        EXPECT_TRUE(ShowsMirrored(shot, kRed, kBlue));
        modes.pop_back();
    }
}

// RGB32 would be offered first, and is what this camera has too: it stays with its own only if nothing is offered.
TEST_F(CaptureTest, ACameraWhosePresentTypeCanBeDrawnIsTakenAsItIs) {
    for (const CameraFormat format : {CameraFormat::kRgb24, CameraFormat::kYuy2, CameraFormat::kNv12}) {
        CameraSettings settings = TwoColors(SmallCamera(format), kRed, kBlue);
        settings.modes.push_back(SmallCamera(CameraFormat::kRgb32).modes.front());
        UseCamera(settings);
        const RunningPreview preview(window_);
        ASSERT_TRUE(preview->Start(0));
        EXPECT_TRUE(WaitForFrames(1));
        EXPECT_EQ(cameras_[0]->Seen().mode, 0);
    }
}

TEST_F(CaptureTest, ACameraThatAcceptsNothingEndsInAFailure) {
    CameraSettings settings = SmallCamera(CameraFormat::kMjpg);
    settings.modes.resize(5, settings.modes.front());
    UseCamera(settings);
    const RunningPreview preview(window_);
    EXPECT_FALSE(preview->Start(0));
    EXPECT_THAT(TakeFailures(), ElementsAre(kReaderError, kStartError));
    EXPECT_EQ(preview->State(), 0u);
    EXPECT_EQ(cameras_[0]->Seen().frames, 0);
}

TEST_F(CaptureTest, ACameraThatCannotBeOpened) {
    const auto camera = UseCamera(SmallCamera());
    CameraFaults faults;
    faults.openResult = kBusy;
    camera->SetFaults(faults);
    const RunningPreview preview(window_);
    EXPECT_FALSE(preview->Start(0));
    EXPECT_THAT(TakeFailures(), ElementsAre(kSourceError, kStartError));
    EXPECT_EQ(preview->State(), 0u);
    camera->SetFaults({});
    EXPECT_TRUE(preview->Start(0)) << "later it can";
    EXPECT_TRUE(WaitForFrames(3));
}

TEST_F(CaptureTest, SampleTimesBeginAtZero) {
    CameraSettings settings = SmallCamera();
    std::mutex lock;
    std::vector<IMFSample*> samples;
    std::vector<LONGLONG> captured;
    settings.delivered = [&](IMFSample* sample) {
        const std::lock_guard guard(lock);
        if (samples.size() < 3) {
            sample->AddRef();
            samples.push_back(sample);
        }
    };
    UseCamera(settings);
    {
        RunningPreview preview(window_);
        ASSERT_TRUE(preview->Start(0));
        EXPECT_TRUE(WaitForFrames(6));
        preview.Finish();
    }
    ASSERT_EQ(samples.size(), 3u);
    LONGLONG times[3] = {-1, -1, -1};
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(samples[i]->GetSampleTime(&times[i]), S_OK);
        ComRelease(samples[i]);
    }
    constexpr LONGLONG kMinuteHns = 600'000'000;
    EXPECT_EQ(times[0], 0);
    EXPECT_GT(times[1], 0);
    EXPECT_GT(times[2], times[1]);
    EXPECT_LT(times[2], kMinuteHns);
}

TEST_F(CaptureTest, AFailedReadWithoutASampleOnlyReadsAgain) {
    UseCamera(SmallCamera());
    const RunningPreview preview(window_);
    ASSERT_TRUE(preview->Start(0));
    EXPECT_TRUE(WaitForFrames(2));
    EXPECT_EQ(preview->OnReadSample(E_FAIL, 0, 0, 0, nullptr), S_OK);
    EXPECT_EQ(preview->OnFlush(0), S_OK);
    EXPECT_EQ(preview->OnEvent(0, nullptr), S_OK);
    EXPECT_TRUE(WaitForFrames(3));
    EXPECT_THAT(window_.Events(), IsEmpty());
}

TEST_F(CaptureTest, AfterClosingACallbackDoesNothing) {
    UseCamera(TwoColors(SmallCamera(), kRed, kBlue));
    const RunningPreview preview(window_);
    EXPECT_EQ(preview->Close(), S_OK) << "nothing is open";
    ASSERT_TRUE(preview->Start(0));
    EXPECT_TRUE(WaitForFrames(2));
    EXPECT_EQ(preview->Close(), S_OK);
    EXPECT_EQ(preview->State(), 0u);
    EXPECT_TRUE(Wait([&] { return cameras_[0]->Seen().running == 0; }));
    EXPECT_EQ(preview->Close(), S_OK);

    IMFSample* sample = nullptr;
    ASSERT_EQ(MFCreateSample(&sample), S_OK);
    EXPECT_EQ(preview->OnReadSample(S_OK, 0, 0, 12345, sample), S_OK);
    LONGLONG time = 0;
    EXPECT_EQ(sample->GetSampleTime(&time), MF_E_NO_SAMPLE_TIMESTAMP) << "the sample was looked at";
    ComRelease(sample);
    EXPECT_THAT(window_.Events(), IsEmpty());
}

TEST_F(CaptureTest, StartingTwiceLeavesOneOpenCamera) {
    UseCamera(TwoColors(SmallCamera(), kRed, kBlue));
    RunningPreview preview(window_);
    for (int i = 0; i < 5; ++i) {
        ASSERT_TRUE(preview->Start(0));
        EXPECT_TRUE(WaitForFrames(2));
        EXPECT_EQ(cameras_[0]->Seen().running, 1);
    }
    EXPECT_EQ(cameras_[0]->Seen().opened, 5);
    preview.Finish();
}

TEST_F(CaptureTest, ASampleWithoutPictureIsPostedAndEndsTheReading) {
    const auto camera = UseCamera(SmallCamera());
    CameraFaults faults;
    faults.emptyAfter = 3;
    camera->SetFaults(faults);
    const RunningPreview preview(window_);
    ASSERT_TRUE(preview->Start(0));
    ASSERT_TRUE(Wait([&] { return !window_.Events().empty(); }));
    EXPECT_TRUE(FAILED(static_cast<HRESULT>(window_.Events().front())));
    // The camera goes on, but nobody asks for a frame any more.
    const std::int64_t skipped = camera->Seen().skipped;
    EXPECT_TRUE(Wait([&] { return camera->Seen().skipped > skipped + 5; }));
    EXPECT_EQ(camera->Seen().frames, 4);
    EXPECT_EQ(window_.Events().size(), 1u);
    EXPECT_EQ(preview->State(), 1u) << "what follows is the page's decision";
}

TEST_F(CaptureTest, AFrameThatCannotBeDrawnIsPostedAndEndsTheReading) {
    const auto camera = UseCamera(SmallCamera());
    const RunningPreview preview(window_);
    // The device has the window's first size; a box outside of it cannot be filled.
    window_.Resize(256, 192);
    ASSERT_TRUE(preview->Start(0));
    ASSERT_TRUE(Wait([&] { return !window_.Events().empty(); }));
    EXPECT_EQ(static_cast<HRESULT>(window_.Events().front()), D3DERR_INVALIDCALL);
    const std::int64_t skipped = camera->Seen().skipped;
    EXPECT_TRUE(Wait([&] { return camera->Seen().skipped > skipped + 5; }));
    EXPECT_EQ(camera->Seen().frames, 1);
}

TEST_F(CaptureTest, ShortBuffersAreDroppedAndReadingGoesOn) {
    const auto camera = UseCamera(SmallCamera());
    const RunningPreview preview(window_);
    ASSERT_TRUE(preview->Start(0));
    ASSERT_TRUE(WaitForFrames(3));
    CameraFaults faults;
    faults.shortAfter = 0;
    camera->SetFaults(faults);
    ASSERT_TRUE(WaitForFrames(3));
    const ULONGLONG lastTick = preview->LastFrameTickMs();
    ASSERT_TRUE(WaitForFrames(10));
    EXPECT_EQ(preview->LastFrameTickMs(), lastTick) << "nothing was drawn";
    camera->SetFaults({});
    EXPECT_TRUE(Wait([&] { return preview->LastFrameTickMs() > lastTick; }));
    EXPECT_THAT(window_.Events(), IsEmpty());
    EXPECT_THAT(TakeFailures(), ElementsAre("a buffer does not hold a frame of 64x48(Device::DrawSample)"));
}

TEST_F(CaptureTest, ACameraThatFallsSilentCanBeToldAndClosed) {
    const auto camera = UseCamera(SmallCamera());
    RunningPreview preview(window_);
    ASSERT_TRUE(preview->Start(0));
    const ULONGLONG started = preview->LastFrameTickMs();
    ASSERT_TRUE(Wait([&] { return preview->LastFrameTickMs() > started; })) << "it grows with the frames";
    CameraFaults faults;
    faults.silentAfter = 0;
    camera->SetFaults(faults);
    EXPECT_TRUE(Wait([&] { return GetTickCount64() - preview->LastFrameTickMs() > 300; }));
    EXPECT_THAT(window_.Events(), IsEmpty());
    preview.Finish();
}

TEST_F(CaptureTest, AnUnpluggedCameraIsGone) {
    const auto camera = UseCamera(SmallCamera());
    RunningPreview preview(window_);
    ASSERT_TRUE(preview->Start(0));
    ASSERT_TRUE(WaitForFrames(3));
    camera->Unplug();
    const std::int64_t frames = camera->Seen().frames;
    EXPECT_EQ(preview->Close(), S_OK);
    EXPECT_FALSE(preview->Start(0));
    EXPECT_THAT(TakeFailures(), ElementsAre(kNoDevice));
    EXPECT_LE(camera->Seen().frames, frames + 1);
    camera->PlugIn();
    EXPECT_TRUE(preview->Start(0));
    EXPECT_TRUE(WaitForFrames(3));
    preview.Finish();
}

TEST_F(CaptureTest, FaultsWhileReadingCanBeClosed) {
    for (std::int64_t CameraFaults::*fault :
         {&CameraFaults::errorAfter, &CameraFaults::endAfter, &CameraFaults::unpluggedAfter}) {
        const auto camera = UseCamera(SmallCamera());
        CameraFaults faults;
        faults.*fault = 4;
        camera->SetFaults(faults);
        RunningPreview preview(window_);
        ASSERT_TRUE(preview->Start(0));
        ASSERT_TRUE(Wait([&] { return camera->Seen().frames == 4; }));
        EXPECT_TRUE(Wait([&] { return GetTickCount64() - preview->LastFrameTickMs() > 100; }));
        EXPECT_EQ(camera->Seen().frames, 4);
        preview.Finish();
    }
}

TEST_F(CaptureTest, ACameraThatDoesNotStart) {
    const auto camera = UseCamera(SmallCamera());
    CameraFaults faults;
    faults.startResult = kBusy;
    camera->SetFaults(faults);
    RunningPreview preview(window_);
    ASSERT_TRUE(preview->Start(0)) << "the failure comes with the first read";
    EXPECT_TRUE(Wait([&] { return GetTickCount64() - preview->LastFrameTickMs() > 100; }));
    EXPECT_EQ(camera->Seen().frames, 0);
    preview.Finish();
}

}  // namespace
}  // namespace preview_test
