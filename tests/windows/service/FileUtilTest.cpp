#include "service/FileUtil.h"

#include <windows.h>

#include <aclapi.h>
#include <sddl.h>

#include <fstream>

#include "tests/windows/service/ServiceTest.h"

namespace {

class FileUtilTest : public ServiceTest {
  protected:
    void SetUp() override {
        ServiceTest::SetUp();
        std::filesystem::remove_all(Base());
        std::filesystem::create_directories(Base());
    }
    void TearDown() override {
        std::filesystem::remove_all(Base());
        ServiceTest::TearDown();
    }
    static std::filesystem::path Base() { return Folder() / L"files"; }
    static const FileUtil& Util() { return FileUtil::GetInstance(); }
    // The folder's access list in words.
    static std::wstring AccessList(const std::filesystem::path& path) {
        PSECURITY_DESCRIPTOR descriptor = nullptr;
        std::wstring name = path.wstring();
        if (GetNamedSecurityInfoW(name.data(), SE_FILE_OBJECT, DACL_SECURITY_INFORMATION, nullptr, nullptr, nullptr,
                                  nullptr, &descriptor) != ERROR_SUCCESS) {
            return {};
        }
        wchar_t* text = nullptr;
        std::wstring result;
        if (ConvertSecurityDescriptorToStringSecurityDescriptorW(descriptor, SDDL_REVISION_1, DACL_SECURITY_INFORMATION,
                                                                 &text, nullptr)) {
            result = text;
            LocalFree(text);
        }
        LocalFree(descriptor);
        return result;
    }
};

TEST_F(FileUtilTest, TellsPicturesAndVideosByExtension) {
    EXPECT_TRUE(Util().IsImageFile(L"a.JPEG"));
    EXPECT_FALSE(Util().IsImageFile(L"a.jpe"));
    EXPECT_TRUE(Util().IsVideoFile(L"clip.tar.mov"));
    EXPECT_FALSE(Util().IsVideoFile(L"clip."));
}

TEST_F(FileUtilTest, FilesAndFoldersExist) {
    const std::filesystem::path file = Base() / L"\u4e2d.txt";
    EXPECT_FALSE(Util().FileExists(file));
    std::ofstream(file) << "x";
    EXPECT_TRUE(Util().FileExists(file));
    EXPECT_TRUE(Util().FileExists(Base()));
    EXPECT_FALSE(Util().FileExists(L""));
    EXPECT_FALSE(Util().FileExists(Base() / L"no" / L"file"));
}

TEST_F(FileUtilTest, MakesAFolderThatEverybodyMayUse) {
    const std::filesystem::path folder = Base() / L"made";
    EXPECT_TRUE(Util().CreateResDirectory(folder));
    ASSERT_TRUE(std::filesystem::is_directory(folder));
    EXPECT_EQ(LogLines("(FileUtil::CreateResDirectory)"), 0);
    const std::wstring list = AccessList(folder);
    // Wine keeps no more of an access list than the permission bits of its host.
    const bool keepsLists = GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version") == nullptr;
    for (const wchar_t* group : {L";BU)", L";AU)", L";BA)"}) {
        EXPECT_TRUE(!keepsLists || list.find(group) != std::wstring::npos) << "of " << group << " in " << list;
    }
    std::ofstream(folder / L"file") << "x";
    EXPECT_TRUE(Util().FileExists(folder / L"file"));
}

TEST_F(FileUtilTest, LeavesAFolderThatIsThereAsItIs) {
    const std::wstring before = AccessList(Base());
    ASSERT_FALSE(before.empty());
    EXPECT_TRUE(Util().CreateResDirectory(Base()));
    EXPECT_EQ(LogLines("[L3]"), 1);
    EXPECT_EQ(LogLines("Now Directory is Exist(FileUtil::CreateResDirectory)"), 1);
    EXPECT_EQ(AccessList(Base()), before);
}

TEST_F(FileUtilTest, MakesOnlyTheLastComponent) {
    EXPECT_FALSE(Util().CreateResDirectory(Base() / L"no" / L"folder"));
    EXPECT_FALSE(Util().FileExists(Base() / L"no"));
    EXPECT_EQ(LogLines("[L3]"), 1);
    EXPECT_EQ(LogLines("Now Directory create Failed3(FileUtil::CreateResDirectory)"), 1);
}

TEST_F(FileUtilTest, AFileInTheWayIsAFailure) {
    const std::filesystem::path file = Base() / L"file";
    std::ofstream(file) << "x";
    EXPECT_FALSE(Util().CreateResDirectory(file));
    EXPECT_EQ(LogLines("Now Directory create Failed183(FileUtil::CreateResDirectory)"), 1);
}

}  // namespace
