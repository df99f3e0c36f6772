// What a link in a folder's place does is shown by tests/package/faults_test.py: Windows programs make none under Wine.
#include "setup/SharedFolders.h"

#include <gmock/gmock.h>

#include "tests/windows/setup/SetupTest.h"

namespace setup {
namespace {

namespace fs = std::filesystem;

class SharedFoldersTest : public SetupTest {
  protected:
    void ExpectRefused(const std::wstring& name) {
        const SharedFolders folders(folder_.wstring());
        std::wstring problem;
        EXPECT_FALSE(folders.Check(problem));
        EXPECT_EQ(problem, Path(name));
        problem.clear();
        EXPECT_FALSE(folders.Make(problem));
        EXPECT_EQ(problem, Path(name));
    }
};

TEST_F(SharedFoldersTest, AreMadeAndFoundSound) {
    const SharedFolders folders(folder_.wstring());
    std::wstring problem;
    EXPECT_TRUE(folders.Check(problem));
    EXPECT_FALSE(fs::exists(Path(L"Comms")));
    EXPECT_TRUE(folders.Make(problem)) << GetLastError();
    EXPECT_TRUE(fs::is_directory(Path(L"Comms\\LumiCamera")));
    EXPECT_TRUE(folders.Check(problem));
    // A second version finds them, and everything in them, as they are.
    Put(L"Comms\\other\\file");
    Put(L"Comms\\LumiCamera\\S-1-5-21-1\\custom_background_btn_0.jpg", "picture");
    EXPECT_TRUE(folders.Make(problem)) << GetLastError();
    EXPECT_EQ(ContentOf(Path(L"Comms\\LumiCamera\\S-1-5-21-1\\custom_background_btn_0.jpg")), "picture");
    EXPECT_TRUE(fs::exists(Path(L"Comms\\other\\file")));
}

TEST_F(SharedFoldersTest, AFileInTheirPlaceIsRefused) {
    Put(L"Comms");
    ExpectRefused(L"Comms");
    fs::remove(Path(L"Comms"));
    Put(L"Comms\\LumiCamera");
    ExpectRefused(L"Comms\\LumiCamera");
}

TEST_F(SharedFoldersTest, WithoutTheFolderAboveNothingIsMade) {
    std::wstring problem;
    EXPECT_FALSE(SharedFolders(Path(L"missing")).Make(problem));
    EXPECT_EQ(problem, Path(L"missing\\Comms"));
}

TEST_F(SharedFoldersTest, PicturesGoByTheirNames) {
    const SharedFolders folders(folder_.wstring());
    folders.RemovePictures();
    for (const wchar_t* name :
         {L"custom_background_btn_0.jpg", L"S-1-5-21-1\\custom_background_btn_31.jpg",
          L"S-1-5-21-1\\custom_background_btn_2.jpg.part", L"S-1-5-21-2\\custom_background_btn_0.jpg"}) {
        Put(std::wstring(L"Comms\\LumiCamera\\") + name);
    }
    Put(L"Comms\\LumiCamera\\S-1-5-21-2\\letter.txt");
    Put(L"Comms\\LumiCamera\\other\\custom_background_btn_0.jpg");
    folders.RemovePictures();
    EXPECT_FALSE(fs::exists(Path(L"Comms\\LumiCamera\\custom_background_btn_0.jpg")));
    EXPECT_FALSE(fs::exists(Path(L"Comms\\LumiCamera\\S-1-5-21-1")));
    EXPECT_FALSE(fs::exists(Path(L"Comms\\LumiCamera\\S-1-5-21-2\\custom_background_btn_0.jpg")));
    EXPECT_TRUE(fs::exists(Path(L"Comms\\LumiCamera\\S-1-5-21-2\\letter.txt")));
    EXPECT_TRUE(fs::exists(Path(L"Comms\\LumiCamera\\other\\custom_background_btn_0.jpg")));
    fs::remove_all(Path(L"Comms\\LumiCamera\\S-1-5-21-2"));
    fs::remove_all(Path(L"Comms\\LumiCamera\\other"));
    folders.RemovePictures();
    EXPECT_FALSE(fs::exists(Path(L"Comms\\LumiCamera")));
    EXPECT_TRUE(fs::exists(Path(L"Comms")));
}

}  // namespace
}  // namespace setup
