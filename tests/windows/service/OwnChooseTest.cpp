// The open-file step: what the dialog is asked for, and what is told of each answer of the user's.
#include <cderr.h>

#include <fstream>

#include "tests/support/CallTrace.h"
#include "tests/windows/service/OwnBackgrounds.h"
#include "tests/windows/support/FakeFileDialog.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class OwnChooseTest : public OwnBackgroundsTest {
  protected:
    void SetUp() override {
        OwnBackgroundsTest::SetUp();
        Start();
    }

    // The answer to that file; what it did to the outside is in calls_.
    bool Choose(const std::wstring& path) {
        dialog_.chosen = path;
        chosen_ = L"before";
        harness::CallTrace trace;
        const bool accepted = Model().ChooseCustomFile(nullptr, chosen_);
        calls_ = trace.Take();
        EXPECT_EQ(chosen_, accepted ? path : L"before");
        return accepted;
    }

    FakeFileDialog dialog_;
    std::wstring chosen_;
    std::vector<std::string> calls_;
};

TEST_F(OwnChooseTest, AnAcceptedFileIsReportedAndTold) {
    std::ofstream(OwnFolder() / L"notes.txt") << "neither picture nor video";
    for (const std::wstring& path : {Media(L"red.jpg"), Media(L"clip.mp4"), (OwnFolder() / L"notes.txt").wstring()}) {
        EXPECT_TRUE(Choose(path));
        EXPECT_THAT(calls_, ElementsAre("report Background replacement:5", "ping"));
        EXPECT_THAT(TakeKinds(), IsEmpty());
    }
}

TEST_F(OwnChooseTest, ACancelledDialogTellsNothing) {
    EXPECT_FALSE(Choose(L""));
    EXPECT_EQ(dialog_.shown, 1);
    EXPECT_THAT(calls_, IsEmpty());
    EXPECT_THAT(TakeKinds(), IsEmpty());
}

TEST_F(OwnChooseTest, ARefusedFileIsNeitherReportedNorTold) {
    Expect("open error pixelFormat not support(ImageReader::Open)");
    const std::vector<std::pair<const wchar_t*, int>> refused = {
        {L"palette8.png", 0}, {L"too_wide.png", 7}, {L"too_high.png", 7}, {L"too_wide.mp4", 8}, {L"too_high.mov", 8}};
    for (const auto& [name, kind] : refused) {
        EXPECT_FALSE(Choose(Media(name)));
        EXPECT_THAT(calls_, IsEmpty());
        EXPECT_THAT(TakeKinds(), ElementsAre(kind)) << kind;
    }
}

TEST_F(OwnChooseTest, TheDialogIsAskedForPicturesAndVideosThatExist) {
    std::wstring path;
    const HWND owner = GetDesktopWindow();
    EXPECT_FALSE(Model().ChooseCustomFile(owner, path));
    EXPECT_EQ(dialog_.asked.hwndOwner, owner);
    EXPECT_EQ(dialog_.filter, L"Image File|*.jpg;*.jpeg;*.bmp;*.png;*.mp4;*.mov|");
    EXPECT_EQ(dialog_.asked.nFilterIndex, 1U);
    EXPECT_EQ(dialog_.asked.nMaxFile, 260U);
    constexpr DWORD kMustExist = OFN_PATHMUSTEXIST | OFN_FILEMUSTEXIST;
    EXPECT_EQ(dialog_.asked.Flags & kMustExist, kMustExist);
}

TEST_F(OwnChooseTest, ADialogThatFailsIsLogged) {
    dialog_.error = CDERR_INITIALIZATION;
    harness::TestLog::Expect("[L4] The file dialog failed: 2(HomeService::ChooseCustomFile)");
    EXPECT_FALSE(Choose(L""));
    EXPECT_THAT(TakeKinds(), IsEmpty());
}

TEST_F(OwnChooseTest, APathThatIsTooLongIsTold) {
    dialog_.error = FNERR_BUFFERTOOSMALL;
    harness::TestLog::Expect("[L4] The file dialog failed: 12291(HomeService::ChooseCustomFile)");
    EXPECT_FALSE(Choose(L"C:\\" + std::wstring(300, L'x') + L".jpg"));
    EXPECT_THAT(TakeKinds(), ElementsAre(0));
    EXPECT_THAT(calls_, IsEmpty());
}

}  // namespace
