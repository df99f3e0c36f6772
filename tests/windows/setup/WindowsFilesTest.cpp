#include "setup/WindowsFiles.h"

#include <gmock/gmock.h>

#include <chrono>
#include <functional>
#include <thread>

#include "tests/support/ImportHook.h"
#include "tests/windows/setup/SetupTest.h"

namespace setup {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr DWORD kEverything = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
// Less than the patience of what is tested.
constexpr auto kMoment = std::chrono::milliseconds(300);

class WindowsFilesTest : public SetupTest {
  protected:
    // What the operation returns when the file is held until it ends, and when it is held for a moment.
    void ExpectPatience(const std::wstring& held, const std::function<Error()>& operation) {
        {
            const suite::Handle file = Hold(held, 0);
            EXPECT_EQ(operation(), static_cast<Error>(ERROR_SHARING_VIOLATION));
        }
        suite::Handle file = Hold(held, 0);
        std::thread scan([&] {
            std::this_thread::sleep_for(kMoment);
            file.Reset();
        });
        EXPECT_EQ(operation(), 0u);
        scan.join();
    }

    WindowsFiles files_;
};

TEST_F(WindowsFilesTest, WhatIsThere) {
    const std::wstring file = Put(L"a.txt");
    Put(L"b\\c\\d.txt");
    EXPECT_TRUE(files_.Exists(file));
    EXPECT_TRUE(files_.Exists(Path(L"b")));
    EXPECT_FALSE(files_.Exists(Path(L"x")));
    EXPECT_THAT(files_.Files(folder_.wstring()), ElementsAre(L"a.txt"));
    EXPECT_THAT(files_.Folders(folder_.wstring()), ElementsAre(L"b"));
    EXPECT_THAT(files_.Files(Path(L"x")), IsEmpty());
    EXPECT_THAT(files_.Folders(Path(L"b\\c")), IsEmpty());
}

TEST_F(WindowsFilesTest, LinesEndInEitherWay) {
    std::vector<std::wstring> lines;
    EXPECT_EQ(files_.ReadLines(Put(L"list", "a\r\nb \xC3\xA4\n\nc"), lines), 0u);
    EXPECT_THAT(lines, ElementsAre(L"a", L"b \u00E4", L"", L"c"));
    lines.clear();
    EXPECT_EQ(files_.ReadLines(Put(L"long", std::string(10000, 'x') + "\r\n"), lines), 0u);
    EXPECT_THAT(lines, ElementsAre(std::wstring(10000, L'x')));
    lines.clear();
    EXPECT_EQ(files_.ReadLines(Put(L"empty", ""), lines), 0u);
    EXPECT_THAT(lines, IsEmpty());
    EXPECT_EQ(files_.ReadLines(Path(L"missing"), lines), static_cast<Error>(ERROR_FILE_NOT_FOUND));
    const suite::Handle writing = Hold(Path(L"list"), kEverything);
    EXPECT_EQ(files_.ReadLines(Path(L"list"), lines), 0u);
}

TEST_F(WindowsFilesTest, AnyHandleOfSomebodyElseIsUse) {
    const std::wstring path = Put(L"a.dll");
    EXPECT_EQ(files_.TestUnused(path), 0u);
    const suite::Handle reader = Hold(path, kEverything);
    EXPECT_EQ(files_.TestUnused(path), static_cast<Error>(ERROR_SHARING_VIOLATION));
}

TEST_F(WindowsFilesTest, AProgramThatRunsIsUse) {
    wchar_t path[MAX_PATH] = {};
    GetModuleFileNameW(nullptr, path, MAX_PATH);
    EXPECT_EQ(files_.TestUnused(path), static_cast<Error>(ERROR_SHARING_VIOLATION));
}

TEST_F(WindowsFilesTest, AReadOnlyMarkIsInNobodysWay) {
    const std::wstring path = Put(L"a.dll");
    SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_READONLY);
    EXPECT_EQ(files_.TestUnused(path), 0u);
    SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_READONLY);
    EXPECT_EQ(files_.Remove(path), 0u);
    EXPECT_FALSE(files_.Exists(path));
}

TEST_F(WindowsFilesTest, WhatAScanHoldsForAMomentIsTriedAgain) {
    const std::wstring path = Put(L"a.dll");
    ExpectPatience(path, [&] { return files_.TestUnused(path); });
    ExpectPatience(path, [&] { return files_.Flush(path); });
    ExpectPatience(path, [&] { return files_.Move(path, Path(L"b.dll")); });
    ExpectPatience(Path(L"b.dll"), [&] { return files_.Remove(Path(L"b.dll")); });
    EXPECT_THAT(files_.Files(folder_.wstring()), IsEmpty());
}

DWORD g_firstError = 0;
int g_tries = 0;
BOOL WINAPI RefuseOnce(LPCWSTR) {
    SetLastError(g_firstError);
    return ++g_tries > 1 ? TRUE : FALSE;
}

TEST_F(WindowsFilesTest, WhatMayPassIsTriedAgainAndNothingElse) {
    const harness::ImportHook hook(nullptr, "DeleteFileW", &RefuseOnce);
    for (const DWORD error : {ERROR_ACCESS_DENIED, ERROR_SHARING_VIOLATION, ERROR_LOCK_VIOLATION, ERROR_DELETE_PENDING,
                              ERROR_USER_MAPPED_FILE}) {
        g_firstError = error;
        g_tries = 0;
        EXPECT_EQ(files_.Remove(Path(L"x")), 0u) << error;
        EXPECT_EQ(g_tries, 2) << error;
    }
    for (const DWORD error : {ERROR_WRITE_PROTECT, ERROR_INVALID_NAME}) {
        g_firstError = error;
        g_tries = 0;
        EXPECT_EQ(files_.Remove(Path(L"x")), error);
        EXPECT_EQ(g_tries, 1) << error;
    }
}

TEST_F(WindowsFilesTest, AMissingFileIsNotWaitedFor) {
    EXPECT_EQ(files_.TestUnused(Path(L"x")), static_cast<Error>(ERROR_FILE_NOT_FOUND));
    EXPECT_EQ(files_.Flush(Path(L"x")), static_cast<Error>(ERROR_FILE_NOT_FOUND));
    EXPECT_EQ(files_.Remove(Path(L"x")), static_cast<Error>(ERROR_FILE_NOT_FOUND));
    EXPECT_EQ(files_.Move(Path(L"x"), Path(L"y")), static_cast<Error>(ERROR_FILE_NOT_FOUND));
}

TEST_F(WindowsFilesTest, AMoveReplacesNothing) {
    const std::wstring a = Put(L"a", "of a");
    const std::wstring b = Put(L"b", "of b");
    EXPECT_EQ(files_.Move(a, b), static_cast<Error>(ERROR_ALREADY_EXISTS));
    EXPECT_EQ(ContentOf(a), "of a");
    EXPECT_EQ(ContentOf(b), "of b");
    EXPECT_EQ(files_.Move(a, Path(L"no folder\\c")), static_cast<Error>(ERROR_PATH_NOT_FOUND));
    Put(L"old\\deep\\c", "of c");
    EXPECT_EQ(files_.Move(Path(L"old"), Path(L"gone")), 0u);
    EXPECT_EQ(ContentOf(Path(L"gone\\deep\\c")), "of c");
}

TEST_F(WindowsFilesTest, FoldersComeAndGo) {
    EXPECT_EQ(files_.MakeFolder(Path(L"a")), 0u);
    EXPECT_EQ(files_.MakeFolder(Path(L"a")), 0u);
    EXPECT_EQ(files_.MakeFolder(Path(L"x\\y")), static_cast<Error>(ERROR_PATH_NOT_FOUND));
    const std::wstring file = Put(L"a\\file");
    EXPECT_EQ(files_.MakeFolder(file), static_cast<Error>(ERROR_ALREADY_EXISTS));
    EXPECT_EQ(files_.RemoveFolder(Path(L"a")), 0u);
    EXPECT_TRUE(files_.Exists(file));
    EXPECT_EQ(files_.Remove(file), 0u);
    EXPECT_EQ(files_.RemoveFolder(Path(L"a")), 0u);
    EXPECT_FALSE(files_.Exists(Path(L"a")));
    EXPECT_EQ(files_.RemoveFolder(Path(L"a")), 0u);
    EXPECT_EQ(files_.RemoveFolder(Path(L"x\\y")), 0u);
    EXPECT_EQ(files_.MakeFolder(Path(L"held")), 0u);
    const suite::Handle held = Hold(Path(L"held"), FILE_SHARE_READ | FILE_SHARE_WRITE);
    EXPECT_EQ(files_.RemoveFolder(Path(L"held")), static_cast<Error>(ERROR_SHARING_VIOLATION));
}

}  // namespace
}  // namespace setup
