// Paths that hold the marks by which the list in the registry is divided.
#include "tests/support/ImportHook.h"
#include "tests/windows/service/OwnBackgrounds.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
namespace fs = std::filesystem;

// A volume without short names, and one with them.
DWORD WINAPI NoShortName(LPCWSTR, LPWSTR, DWORD) {
    SetLastError(ERROR_FILE_NOT_FOUND);
    return 0;
}
std::wstring g_shortName;
DWORD WINAPI ShortName(LPCWSTR, LPWSTR path, DWORD size) {
    if (g_shortName.size() >= size) {
        return static_cast<DWORD>(g_shortName.size() + 1);
    }
    wcscpy(path, g_shortName.c_str());
    return static_cast<DWORD>(g_shortName.size());
}

class OwnListedPathTest : public OwnBackgroundsTest {
  protected:
    void SetUp() override {
        OwnBackgroundsTest::SetUp();
        Start();
    }
};

TEST_F(OwnListedPathTest, AVideoThatTheListCannotNameIsRefused) {
    const harness::ImportHook hook(nullptr, "GetShortPathNameW", &NoShortName);
    for (const wchar_t* name : {L"a[(&;i!-)]b.mp4", L"a[(&,f!=)]b.mp4"}) {
        const Values before = AllValues();
        EXPECT_FALSE(Model().AddCustomBackground(Own(L"clip.mp4", name)));
        EXPECT_THAT(TakeKinds(), ElementsAre(10));
        EXPECT_EQ(AllValues(), before);
        EXPECT_THAT(gallery_, IsEmpty());
    }
}

TEST_F(OwnListedPathTest, APictureIsTakenAllTheSame) {
    const harness::ImportHook hook(nullptr, "GetShortPathNameW", &NoShortName);
    EXPECT_TRUE(Model().AddCustomBackground(Own(L"red.jpg", L"a[(&;i!-)]b.jpg")));
    ASSERT_EQ(Saved().size(), 1u);
    EXPECT_EQ(Saved()[0].sourcePath, L"");
    ExpectAllAgree();
}

TEST_F(OwnListedPathTest, AShortNameStandsForIt) {
    const fs::path clip = Own(L"clip.mp4", L"a[(&,f!=)]b.mp4");
    g_shortName = (OwnFolder() / L"A1B2~1.MP4").wstring();
    const harness::ImportHook hook(nullptr, "GetShortPathNameW", &ShortName);
    EXPECT_TRUE(Model().AddCustomBackground(clip));
    ASSERT_EQ(Saved().size(), 1u);
    EXPECT_EQ(Saved()[0].sourcePath, g_shortName);
    EXPECT_EQ(Text(L"lumi_camera_background_image_path"), clip.wstring()) << "the registry value has no marks to mind";
}

TEST_F(OwnListedPathTest, AShortNameWithTheMarksOrTooLongIsNone) {
    const fs::path clip = Own(L"clip.mp4", L"a[(&,f!=)]b.mp4");
    const harness::ImportHook hook(nullptr, "GetShortPathNameW", &ShortName);
    for (const std::wstring& name : {clip.wstring(), std::wstring(300, L'x')}) {
        g_shortName = name;
        EXPECT_FALSE(Model().AddCustomBackground(clip));
        EXPECT_THAT(TakeKinds(), ElementsAre(10));
    }
}

}  // namespace
