#pragma once
// What the tests share that run the capture on doubles: a graphics system and a camera that keep every rule, and a
// window whose procedure does what the preview window's owner does. One thread, the test's, which owns the window.
#include <windows.h>

#include <mferror.h>

#include <chrono>
#include <functional>
#include <vector>

#include "preview/Preview.h"
#include "tests/support/doubles/CameraDouble.h"
#include "tests/support/doubles/Gate.h"
#include "tests/support/doubles/GraphicsDouble.h"
#include "tests/support/doubles/Violations.h"
#include "tests/windows/preview/PreviewSupport.h"

namespace preview_test {

using doubles::Gate;

class DoubledPreviewTest : public PreviewTest {
  protected:
    void SetUp() override;
    void TearDown() override;

    static doubles::CameraType Type(const GUID& subtype, std::uint32_t width = 64, std::uint32_t height = 48);
    static void ChangeCamera(const std::function<void(doubles::CameraScript&)>& change) {
        doubles::Cameras::Change(change);
    }
    static void ChangeGraphics(const std::function<void(doubles::GraphicsScript&)>& change) {
        doubles::Graphics::Change(change);
    }
    static doubles::CameraSeen Camera() { return doubles::Cameras::Seen(); }
    static doubles::GraphicsSeen Drawn() { return doubles::Graphics::Seen(); }

    // Makes the object, once.
    void Make();
    bool Start() { return preview_->Start(0); }
    bool WaitForPresents(int more);
    bool WaitForReads(int more);
    // The HRESULTs that were posted.
    std::vector<HRESULT> Posted() const;
    bool WaitForPosted(std::size_t count = 1) {
        return Wait([&] { return Posted().size() >= count; });
    }
    // Closes, gives the device back and releases the object.
    void Finish();

    TestWindow window_{64, 48};
    Preview* preview_ = nullptr;
};

}  // namespace preview_test
