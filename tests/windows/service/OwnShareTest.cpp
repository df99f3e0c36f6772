// Records whose files lie on a share that does not answer: the start does not wait for it, and nothing is lost.
#include <windows.h>

#include <atomic>
#include <string_view>

#include "tests/support/ImportHook.h"
#include "tests/support/Wait.h"
#include "tests/windows/service/OwnBackgrounds.h"

namespace {

using testing::ElementsAre;
namespace fs = std::filesystem;

class OwnShareTest : public OwnBackgroundsTest {
  protected:
    static std::wstring Piece(int number, bool video, const fs::path& picture, const std::wstring& source) {
        return Name(number) + L"[(&,f!=)]0[(&,f!=)]" + (video ? L"1" : L"0") + L"[(&,f!=)]" + picture.wstring() +
               L"[(&,f!=)]" + source + L"[(&;i!-)]";
    }
    static void SetGroup(const std::wstring& group) { Write(L"lumi_camera_custom_img_group", group); }
};

// A share that went offline: each touch of it takes longer than anybody would wait for a window.
class SilentShare {
  public:
    SilentShare() : hook_(nullptr, "GetFileAttributesW", &Attributes) {
        original = hook_.Original<decltype(original)>();
        ResetEvent(answers.Get());
    }
    ~SilentShare() {
        SetEvent(answers.Get());
        EXPECT_TRUE(harness::WaitUntil([] { return waiting == 0; }));
    }

  private:
    static DWORD WINAPI Attributes(LPCWSTR path) {
        if (!std::wstring_view(path).starts_with(L"\\\\away\\")) {
            return original(path);
        }
        ++waiting;
        WaitForSingleObject(answers.Get(), 60'000);
        --waiting;
        SetLastError(ERROR_BAD_NETPATH);
        return INVALID_FILE_ATTRIBUTES;
    }

    static inline const suite::Handle answers{CreateEventW(nullptr, TRUE, FALSE, nullptr)};
    static inline std::atomic<int> waiting = 0;
    static inline decltype(&GetFileAttributesW) original = nullptr;

    const harness::ImportHook hook_;
};

TEST_F(OwnShareTest, PicturesOnAShareThatDoesNotAnswerCostTheStartOneLimitAndNoRecord) {
    Start();
    ASSERT_TRUE(Model().AddCustomBackground(Media(L"red.jpg")));
    std::wstring stored = Piece(0, false, Picture(0), L"a");
    for (int item = 1; item < 8; ++item) {
        stored += Piece(item, false, L"\\\\away\\pictures\\" + std::to_wstring(item) + L".jpg", L"a");
    }
    SetGroup(stored);
    {
        Expect("The work takes too long(RunWhilePainting)");
        const SilentShare share;
        Start();
        EXPECT_EQ(LogLines("The work takes too long(RunWhilePainting)"), 1);
    }
    EXPECT_THAT(GalleryNames(), ElementsAre(Name(0))) << "what could be looked at is shown";
    EXPECT_EQ(Text(L"lumi_camera_custom_img_group"), stored);
}

TEST_F(OwnShareTest, AMigrationFromAShareThatDoesNotAnswerEnds) {
    const std::wstring old = L"\\\\away\\pictures\\custom_background_btn_0.jpg";
    SetGroup(Piece(0, true, old, L"\\\\away\\clip.mp4"));
    {
        Expect("The work takes too long(RunWhilePainting)");
        const SilentShare share;
        Start();
        EXPECT_EQ(LogLines("The work takes too long(RunWhilePainting)"), 2) << "of the moving, and of what is shown";
    }
    EXPECT_EQ(Number(L"sync_custom"), 1);
    ASSERT_EQ(Saved().size(), 1u);
    EXPECT_EQ(Saved()[0].thumbPath, old);
}

}  // namespace
