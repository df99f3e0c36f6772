// Which dumps are removed, whatever order the file system lists them in: FAT and many shares do not sort.
#include <windows.h>

#include <gtest/gtest.h>

#include <fstream>

#include "suite/crashdump/DumpFolder.h"
#include "tests/support/ImportHook.h"
#include "tests/windows/suite/TestFolder.h"

namespace fs = std::filesystem;

namespace {

// The names that a folder has for whoever walks it, in this order.
std::vector<std::wstring> listed;
std::size_t next = 0;

BOOL WINAPI NextOfList(HANDLE, WIN32_FIND_DATAW* entry) {
    if (next == listed.size()) {
        SetLastError(ERROR_NO_MORE_FILES);
        return FALSE;
    }
    *entry = {};
    listed[next++].copy(entry->cFileName, MAX_PATH - 1);
    return TRUE;
}

HANDLE WINAPI FirstOfList(const wchar_t*, WIN32_FIND_DATAW* entry) {
    next = 0;
    return NextOfList(nullptr, entry) ? reinterpret_cast<HANDLE>(&listed) : INVALID_HANDLE_VALUE;
}

BOOL WINAPI CloseList(HANDLE) {
    return TRUE;
}

class DumpFolderTest : public testing::Test {
  protected:
    ~DumpFolderTest() override { listed.clear(); }

    void Make(const std::wstring& name) {
        std::ofstream(folder_.Path() / name) << "x";
        listed.push_back(name);
    }
    bool IsThere(const std::wstring& name) const { return fs::exists(folder_.Path() / name); }

    // Of twelve, the one of second 21 is the newest.
    static std::wstring Dump(int second) { return L"prog-20260101-0000" + std::to_wstring(second) + L"000-1.dmp"; }

    void Remove() {
        const harness::ImportHook first(nullptr, "FindFirstFileW", FirstOfList);
        const harness::ImportHook following(nullptr, "FindNextFileW", NextOfList);
        const harness::ImportHook close(nullptr, "FindClose", CloseList);
        suite::RemoveOldDumps(folder_.Path(), L"prog");
    }

    TestFolder folder_;
};

TEST_F(DumpFolderTest, TheOldestGoHoweverTheyAreListed) {
    for (const int second : {21, 13, 10, 20, 12, 11, 19, 14, 16, 15, 18, 17}) {
        Make(Dump(second));
    }
    Remove();
    for (int second = 10; second < 22; ++second) {
        EXPECT_EQ(IsThere(Dump(second)), second >= 12) << second;
    }
}

TEST_F(DumpFolderTest, WhatIsNoDumpOfThisProgramIsNotCountedAndStays) {
    for (int second = 10; second < 20; ++second) {
        Make(Dump(second));
    }
    // They sort before and after the dumps.
    Make(L"prog-!1.dmp");
    Make(L"prog-ui-20260101-000000000-1.dmp");
    // No file has such a name, but a share may list one.
    listed.push_back(L"prog-:1.dmp");
    listed.push_back(L"prog-");
    Remove();
    for (int second = 10; second < 20; ++second) {
        EXPECT_TRUE(IsThere(Dump(second))) << second;
    }
    EXPECT_TRUE(IsThere(L"prog-!1.dmp"));
    EXPECT_TRUE(IsThere(L"prog-ui-20260101-000000000-1.dmp"));
}

}  // namespace
