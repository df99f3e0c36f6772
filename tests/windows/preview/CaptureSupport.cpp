#include "tests/windows/preview/CaptureSupport.h"

#include <algorithm>

namespace preview_test {

using democamera::CameraFormat;
using democamera::CameraMode;
using democamera::CameraSettings;
using democamera::DemoCamera;

CameraSettings SmallCamera(CameraFormat format) {
    CameraSettings settings;
    settings.symbolicLink = kAllowedLink;
    CameraMode mode;
    mode.format = format;
    mode.width = 64;
    mode.height = 48;
    mode.framesPerSecond = 60;
    settings.modes = {mode};
    return settings;
}

CameraSettings TwoColors(CameraSettings settings, std::uint32_t left, std::uint32_t right) {
    settings.painter = [left, right](std::uint32_t* picture, std::uint32_t width, std::uint32_t height, std::uint64_t) {
        for (std::uint32_t y = 0; y < height; ++y) {
            std::fill_n(picture + std::size_t{y} * width, width / 2, left);
            std::fill_n(picture + std::size_t{y} * width + width / 2, width - width / 2, right);
        }
    };
    return settings;
}

RunningPreview::RunningPreview(const TestWindow& window) {
    EXPECT_EQ(Preview::CreateInstance(window.Get(), window.Get(), &preview_), S_OK);
    EXPECT_EQ(preview_->State(), 0u);
}

RunningPreview::~RunningPreview() {
    if (preview_ != nullptr) {
        Finish();
    }
}

void RunningPreview::Finish() {
    EXPECT_EQ(preview_->Close(), S_OK);
    // A busy machine takes longer for the last picture than Close waits; two devices of one window are not meant to be.
    EXPECT_TRUE(Wait([this] { return preview_->DestroyRenderer(); }));
    CaptureTest::Keep(std::exchange(preview_, nullptr));
}

std::vector<Preview*> CaptureTest::finished_;
std::vector<std::shared_ptr<DemoCamera>> CaptureTest::usedCameras_;

void CaptureTest::ReleaseFinished() {
    const auto heldByOthers = [](Preview* preview) {
        preview->AddRef();
        return preview->Release() != 1;
    };
    EXPECT_TRUE(Wait([&] { return std::none_of(finished_.begin(), finished_.end(), heldByOthers); }))
        << "somebody holds a preview that was closed";
    for (Preview* preview : std::exchange(finished_, {})) {
        preview->Release();
    }
}

void CaptureTest::TearDownTestSuite() {
    ReleaseFinished();
    const auto isAlive = [](const auto& camera) { return camera->Seen().alive != 0; };
    EXPECT_TRUE(Wait([&] { return std::none_of(usedCameras_.begin(), usedCameras_.end(), isAlive); }))
        << "somebody holds a source that was shut down";
    usedCameras_.clear();
    PreviewTest::TearDownTestSuite();
}

void CaptureTest::TearDown() {
    for (const auto& camera : cameras_) {
        EXPECT_EQ(camera->Seen().running, 0) << "sources that were not shut down";
    }
    usedCameras_.insert(usedCameras_.end(), cameras_.begin(), cameras_.end());
    democamera::SetCameras({});
    democamera::SetEnumerationResult(S_OK);
    PreviewTest::TearDown();
}

std::shared_ptr<DemoCamera> CaptureTest::UseCamera(CameraSettings settings) {
    UseCameras({std::move(settings)});
    return cameras_.front();
}

void CaptureTest::UseCameras(std::vector<CameraSettings> settings) {
    usedCameras_.insert(usedCameras_.end(), cameras_.begin(), cameras_.end());
    cameras_.clear();
    for (CameraSettings& each : settings) {
        cameras_.push_back(DemoCamera::Make(std::move(each)));
    }
    democamera::SetCameras(cameras_);
}

bool CaptureTest::WaitForFrames(std::int64_t more, std::size_t camera) {
    const std::int64_t goal = cameras_.at(camera)->Seen().frames + more;
    return Wait([&] { return cameras_.at(camera)->Seen().frames >= goal; });
}

}  // namespace preview_test
