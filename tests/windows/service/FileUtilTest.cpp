#include "service/FileUtil.h"

#include <windows.h>

#include <aclapi.h>
#include <sddl.h>

#include <fstream>

#include "tests/support/ImportHook.h"
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
    std::ofstream(folder / L"file") << "x";
    EXPECT_TRUE(Util().FileExists(folder / L"file"));
}

// What the system is asked for: Wine keeps no more of an access list than the permission bits of its host.
struct AskedFolder {
    std::wstring list;
    DWORD revision = 0;
    PSECURITY_DESCRIPTOR made = nullptr;
    std::wstring path;
    SECURITY_ATTRIBUTES attributes = {};
};
AskedFolder g_asked;
const harness::ImportHook* g_convert = nullptr;

BOOL WINAPI ConvertList(LPCWSTR list, DWORD revision, PSECURITY_DESCRIPTOR* descriptor, PULONG size) {
    g_asked.list = list;
    g_asked.revision = revision;
    const BOOL converted = g_convert->Original<decltype(&ConvertStringSecurityDescriptorToSecurityDescriptorW)>()(
        list, revision, descriptor, size);
    g_asked.made = *descriptor;
    return converted;
}

BOOL WINAPI MakeDirectory(LPCWSTR path, LPSECURITY_ATTRIBUTES attributes) {
    g_asked.path = path;
    g_asked.attributes = attributes ? *attributes : SECURITY_ATTRIBUTES{};
    return TRUE;
}

TEST_F(FileUtilTest, ItsAccessListNamesUsersOwnersAndAdministrators) {
    g_asked = {};
    const harness::ImportHook convert(nullptr, "ConvertStringSecurityDescriptorToSecurityDescriptorW", &ConvertList);
    const harness::ImportHook make(nullptr, "CreateDirectoryW", &MakeDirectory);
    g_convert = &convert;
    EXPECT_TRUE(Util().CreateResDirectory(L"C:\\nowhere\\new"));
    EXPECT_EQ(g_asked.list, L"D:(A;CIOI;GA;;;BU)(A;CIOI;GA;;;AU)(A;CIOI;GA;;;CO)(A;CIOI;GA;;;BA)");
    EXPECT_EQ(g_asked.revision, 1U);
    EXPECT_EQ(g_asked.path, L"C:\\nowhere\\new");
    ASSERT_NE(g_asked.made, nullptr);
    EXPECT_EQ(g_asked.attributes.lpSecurityDescriptor, g_asked.made);
    EXPECT_EQ(g_asked.attributes.nLength, sizeof(SECURITY_ATTRIBUTES));
    EXPECT_FALSE(g_asked.attributes.bInheritHandle);
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
