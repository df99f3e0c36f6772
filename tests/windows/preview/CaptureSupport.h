#pragma once
// What the capture tests share: demo cameras in the place of the system's, and a preview that cleans up after itself.
// One thread, the test's.
#include <memory>
#include <vector>

#include "preview/Preview.h"
#include "tests/windows/preview/PreviewSupport.h"
#include "tools/democamera/DemoCameraSystem.h"

namespace preview_test {

inline const std::wstring kAllowedLink = L"\\\\?\\usb#vid_05c8&pid_0001&mi_00#demo";
inline const std::wstring kOtherLink = L"\\\\?\\usb#vid_046d&pid_0825&mi_00#demo";

// Settings of a small quick camera with one mode.
democamera::CameraSettings SmallCamera(democamera::CameraFormat format = democamera::CameraFormat::kYuy2);

// Pictures with the left half in one colour and the right half in another, 0x00RRGGBB.
democamera::CameraSettings TwoColors(democamera::CameraSettings settings, std::uint32_t left, std::uint32_t right);

// A preview on its windows; at the end closed and its renderer destroyed. The test program keeps the object until
// ReleaseFinished, to see that nobody else does.
class RunningPreview {
  public:
    explicit RunningPreview(const TestWindow& window);
    ~RunningPreview();
    RunningPreview(const RunningPreview&) = delete;
    RunningPreview& operator=(const RunningPreview&) = delete;

    Preview* operator->() const { return preview_; }
    // As at the end, but now.
    void Finish();

  private:
    Preview* preview_ = nullptr;
};

class CaptureTest : public PreviewTest {
  public:
    // Takes over the reference of a preview that is done with.
    static void Keep(Preview* preview) { finished_.push_back(preview); }
    // Releases the kept ones once nobody else holds one; a failure of the test if somebody goes on to.
    static void ReleaseFinished();

  protected:
    CaptureTest() : window_(128, 96) {}
    // Nobody may hold a preview or a source any more, a while after the last one was closed.
    static void TearDownTestSuite();
    void TearDown() override;

    // The only cameras from now on, in that order.
    std::shared_ptr<democamera::DemoCamera> UseCamera(democamera::CameraSettings settings);
    void UseCameras(std::vector<democamera::CameraSettings> settings);

    // Until the camera has delivered that many frames more.
    bool WaitForFrames(std::int64_t more, std::size_t camera = 0);

    TestWindow window_;
    std::vector<std::shared_ptr<democamera::DemoCamera>> cameras_;

  private:
    static std::vector<Preview*> finished_;
    static std::vector<std::shared_ptr<democamera::DemoCamera>> usedCameras_;
};

}  // namespace preview_test
