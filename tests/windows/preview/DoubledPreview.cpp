#include "tests/windows/preview/DoubledPreview.h"

#include <mfapi.h>

#include <utility>

namespace preview_test {

using doubles::Cameras;
using doubles::CameraType;
using doubles::Graphics;
using doubles::Violations;

void DoubledPreviewTest::SetUp() {
    PreviewTest::SetUp();
    Graphics::Begin();
    Cameras::Begin();
    ChangeCamera([](doubles::CameraScript& script) { script.natives = {Type(MFVideoFormat_YUY2)}; });
    Violations::Take();
}

void DoubledPreviewTest::TearDown() {
    if (preview_) {
        Finish();
    }
    Cameras::End();
    EXPECT_THAT(Violations::Take(), testing::IsEmpty());
    EXPECT_EQ(Drawn().devicesAlive, 0);
    EXPECT_EQ(Drawn().objectsAlive, 0);
    EXPECT_EQ(Drawn().chainsAlive, 0);
    PreviewTest::TearDown();
}

CameraType DoubledPreviewTest::Type(const GUID& subtype, std::uint32_t width, std::uint32_t height) {
    CameraType type;
    type.subtype = subtype;
    type.width = width;
    type.height = height;
    return type;
}

void DoubledPreviewTest::Make() {
    ASSERT_EQ(Preview::CreateInstance(window_.Get(), window_.Get(), &preview_), S_OK);
}

bool DoubledPreviewTest::WaitForPresents(int more) {
    const int goal = Drawn().presents + more;
    return Wait([&] { return Drawn().presents >= goal; });
}

bool DoubledPreviewTest::WaitForReads(int more) {
    const int goal = Camera().reads + more;
    return Wait([&] { return Camera().reads >= goal; });
}

std::vector<HRESULT> DoubledPreviewTest::Posted() const {
    std::vector<HRESULT> posted;
    for (const WPARAM parameter : window_.Events()) {
        posted.push_back(static_cast<HRESULT>(parameter));
    }
    return posted;
}

void DoubledPreviewTest::Finish() {
    EXPECT_EQ(preview_->Close(), S_OK);
    EXPECT_TRUE(Wait([this] { return preview_->DestroyRenderer(); }));
    std::exchange(preview_, nullptr)->Release();
}

}  // namespace preview_test
