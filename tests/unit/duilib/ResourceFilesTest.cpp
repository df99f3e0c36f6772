#include "markup/ResourceFiles.h"

#include <gtest/gtest.h>

namespace DuiLib {
namespace {

// Leaves the folder as it was.
class ResourceFilesTest : public testing::Test {
  protected:
    ~ResourceFilesTest() override { SetResourceFolder(before_); }

  private:
    const std::wstring before_ = GetResourceFolder();
};

TEST_F(ResourceFilesTest, TheFolderEndsWithASeparator) {
    SetResourceFolder(L"C:\\res");
    EXPECT_EQ(GetResourceFolder(), L"C:\\res\\");
    SetResourceFolder(L"C:\\res\\");
    EXPECT_EQ(GetResourceFolder(), L"C:\\res\\");
    SetResourceFolder(L"C:/res/");
    EXPECT_EQ(GetResourceFolder(), L"C:/res/");
    SetResourceFolder(L"");
    EXPECT_EQ(GetResourceFolder(), L"") << "the current folder";
}

TEST_F(ResourceFilesTest, APathIsFullWithADriveOrAServer) {
    for (const wchar_t* path : {L"C:\\a.png", L"C:", L"\\\\server\\a.png"}) {
        EXPECT_TRUE(IsFullPath(path)) << testing::PrintToString(std::wstring(path));
    }
    for (const wchar_t* path : {L"", L":", L"a", L"a.png", L"drawable/a:b.png", L"\\a.png", L"/a.png"}) {
        EXPECT_FALSE(IsFullPath(path)) << testing::PrintToString(std::wstring(path));
    }
}

TEST_F(ResourceFilesTest, OtherFilesLieInTheFolder) {
    SetResourceFolder(L"C:\\res");
    EXPECT_EQ(ResourceFile(L"drawable/a.png"), L"C:\\res\\drawable/a.png");
    EXPECT_EQ(ResourceFile(L"D:\\a.png"), L"D:\\a.png");
    EXPECT_EQ(ResourceFile(L"\\\\server\\a.png"), L"\\\\server\\a.png");
}

}  // namespace
}  // namespace DuiLib
