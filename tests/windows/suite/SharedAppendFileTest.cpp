#include "suite/common/SharedAppendFile.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <fstream>
#include <future>

#include "suite/common/LocalFolder.h"
#include "tests/support/ImportHook.h"
#include "tests/windows/suite/TestFolder.h"

using suite::SharedAppendFile;
using testing::ElementsAre;

TEST(SharedAppendFileTest, AHolderThatHangsDelaysALineButDoesNotLoseIt) {
    TestFolder folder;
    const std::wstring path = folder.Path() / L"a.log";
    SharedAppendFile file(path, 1000, 1);
    ASSERT_TRUE(file.Append("one\n"));
    suite::Handle mutex(OpenMutexW(SYNCHRONIZE, FALSE, SharedAppendFile::MutexName(path).c_str()));
    ASSERT_TRUE(mutex);
    ASSERT_EQ(WaitForSingleObject(mutex.Get(), 5000), WAIT_OBJECT_0);
    EXPECT_TRUE(std::async(std::launch::async, [&] { return file.Append("two\n"); }).get());
    ReleaseMutex(mutex.Get());
    EXPECT_TRUE(file.Append("three\n"));
    EXPECT_THAT(ReadLines(path), ElementsAre("one", "two", "three"));
}

TEST(SharedAppendFileTest, SeesThatAnotherOneHasRotated) {
    TestFolder folder;
    const std::wstring path = folder.Path() / L"a.log";
    SharedAppendFile one(path, 10, 2);
    SharedAppendFile two(path, 10, 2);
    ASSERT_TRUE(one.Append("1-one\n"));
    ASSERT_TRUE(two.Append("1-two\n"));
    ASSERT_TRUE(one.Append("2-one\n"));
    ASSERT_TRUE(two.Append("2-two\n"));
    EXPECT_THAT(ReadLines(folder.Path() / L"a.1.log"), ElementsAre("1-one", "1-two"));
    EXPECT_THAT(ReadLines(path), ElementsAre("2-one", "2-two"));
}

TEST(SharedAppendFileTest, WithoutOlderFilesAFullFileTakesNoMoreUntilItIsEmptied) {
    TestFolder folder;
    const std::filesystem::path path = folder.Path() / L"a.jsonl";
    SharedAppendFile file(path, 8, 0);
    EXPECT_TRUE(file.Append("12345\n"));
    EXPECT_TRUE(file.Append("67890\n"));
    EXPECT_FALSE(file.Append("lost\n"));
    EXPECT_EQ(ReadBytes(path), "12345\n67890\n");
    file.Close();
    std::filesystem::resize_file(path, 0);
    EXPECT_TRUE(file.Append("new\n"));
    EXPECT_EQ(ReadBytes(path), "new\n");
}

TEST(SharedAppendFileTest, MakesTheFolderAgainWhenItIsRemoved) {
    TestFolder folder;
    const std::filesystem::path path = folder.Path() / L"x" / L"y" / L"a.log";
    SharedAppendFile file(path, 1000, 0);
    ASSERT_TRUE(file.Append("one\n"));
    file.Close();
    std::filesystem::remove_all(folder.Path() / L"x");
    EXPECT_TRUE(file.Append("two\n"));
    EXPECT_EQ(ReadBytes(path), "two\n");
}

TEST(SharedAppendFileTest, WritersOfOnePathShareAMutexWhateverTheLetterCase) {
    EXPECT_EQ(SharedAppendFile::MutexName(L"C:\\Logs\\A.log"), SharedAppendFile::MutexName(L"c:\\logs\\a.LOG"));
    EXPECT_NE(SharedAppendFile::MutexName(L"C:\\Logs\\A.log"), SharedAppendFile::MutexName(L"C:\\Logs\\B.log"));
}

TEST(LocalFolderTest, FollowsTheEnvironmentUnlessItIsNoAbsolutePath) {
    TestFolder folder;
    EXPECT_EQ(suite::LocalDataFolder(), folder.Path().wstring());
    SetEnvironmentVariableW(L"LOCALAPPDATA", (folder.Path().wstring() + L"\\").c_str());
    EXPECT_EQ(suite::LocalDataFolder(), folder.Path().wstring());
    for (const wchar_t* bad : {L"relative\\path", L"\\rooted", L"C:", static_cast<const wchar_t*>(nullptr)}) {
        SetEnvironmentVariableW(L"LOCALAPPDATA", bad);
        const std::wstring known = suite::LocalDataFolder();
        EXPECT_NE(known.find(L":\\"), std::wstring::npos);
        EXPECT_NE(known, folder.Path().wstring());
    }
}

TEST(LocalFolderTest, PathsOfEitherSlashAndOfTheNetworkAreAbsolute) {
    TestFolder folder;
    SetEnvironmentVariableW(L"LOCALAPPDATA", L"C:/data/");
    EXPECT_EQ(suite::LocalDataFolder(), L"C:/data");
    SetEnvironmentVariableW(L"LOCALAPPDATA", L"\\\\server\\share\\");
    EXPECT_EQ(suite::LocalDataFolder(), L"\\\\server\\share");
}

TEST(LocalFolderTest, MakesWhatIsMissingAndSaysWhetherItIsThere) {
    TestFolder folder;
    const std::wstring path = folder.Path() / L"a" / L"b";
    EXPECT_TRUE(suite::MakeFolders(path));
    EXPECT_TRUE(std::filesystem::is_directory(path));
    EXPECT_TRUE(suite::MakeFolders(path)) << "it is there already";
    std::ofstream(folder.Path() / L"file") << "x";
    EXPECT_FALSE(suite::MakeFolders(folder.Path() / L"file"));
    EXPECT_FALSE(suite::MakeFolders(folder.Path() / L"file" / L"below"));
    EXPECT_FALSE(suite::MakeFolders(L""));
}

TEST(LocalFolderTest, NamesTheProgram) {
    EXPECT_EQ(suite::ProgramName(), L"suite_logger_test");
}

TEST(LocalFolderTest, LongPathsAreGivenWhole) {
    TestFolder folder;
    const std::wstring path = L"C:\\" + std::wstring(300, L'd');
    SetEnvironmentVariableW(L"LOCALAPPDATA", path.c_str());
    EXPECT_EQ(suite::LocalDataFolder(), path);
}

namespace {

std::wstring g_program;

// By the rules of Windows: what does not fit with its end is cut off, and the whole room is said to be filled.
DWORD WINAPI TellProgram(HMODULE, LPWSTR path, DWORD room) {
    const auto length = static_cast<DWORD>(g_program.size());
    const DWORD told = std::min(length, room - 1);
    std::copy_n(g_program.data(), told, path);
    path[told] = L'\0';
    SetLastError(told < length ? ERROR_INSUFFICIENT_BUFFER : ERROR_SUCCESS);
    return told < length ? room : length;
}

}  // namespace

TEST(LocalFolderTest, AProgramMayLieDeep) {
    const harness::ImportHook hook(nullptr, "GetModuleFileNameW", &TellProgram);
    for (const std::size_t length : {1, 258, 259, 260, 261, 519, 520, 521, 32766}) {
        g_program = std::wstring(length, L'p');
        EXPECT_EQ(suite::ProgramPath(), g_program) << length;
    }
    g_program = L"C:\\" + std::wstring(300, L'd') + L"\\deep.exe";
    EXPECT_EQ(suite::ProgramName(), L"deep");
    g_program = std::wstring(100'000, L'p');
    EXPECT_EQ(suite::ProgramPath(), L"") << "longer than the system's paths are";
}
