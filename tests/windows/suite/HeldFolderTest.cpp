// What is found out of folders, their owners and locks before files are trusted to them.
#include "suite/common/HeldFolder.h"

#include <gtest/gtest.h>

#include <fstream>
#include <thread>

#include "suite/common/MutexLock.h"
#include "suite/common/UserSid.h"
#include "tests/support/ImportHook.h"
#include "tests/windows/suite/TestFolder.h"

using suite::FactsOf;
using suite::FolderFacts;
using suite::Handle;
using suite::HoldFolder;
using suite::MutexLock;

namespace {

// What the system says of every path.
DWORD g_attributes = 0;
DWORD WINAPI Attributes(const wchar_t*) {
    SetLastError(ERROR_BAD_NETPATH);
    return g_attributes;
}

}  // namespace

TEST(HeldFolderTest, TellsAFolderOfItsOwner) {
    TestFolder folder;
    const Handle held = HoldFolder(folder.Path().wstring());
    ASSERT_TRUE(held);
    const FolderFacts facts = FactsOf(held.Get(), folder.Path().wstring());
    EXPECT_EQ(facts.error, DWORD{ERROR_SUCCESS});
    EXPECT_TRUE(facts.isFolder);
    EXPECT_FALSE(facts.isLink);
    EXPECT_EQ(facts.owner.rfind(L"S-1-", 0), 0u) << "an identifier in text form";
    EXPECT_FALSE(suite::IsLink(folder.Path().wstring()));
}

TEST(HeldFolderTest, AFileIsNoFolder) {
    TestFolder folder;
    const std::wstring path = folder.Path() / L"file";
    std::ofstream(folder.Path() / L"file") << "x";
    const Handle held = HoldFolder(path);
    ASSERT_TRUE(held);
    EXPECT_FALSE(FactsOf(held.Get(), path).isFolder);
    EXPECT_EQ(FactsOf(held.Get(), path).error, DWORD{ERROR_SUCCESS});
}

TEST(HeldFolderTest, WhatCannotBeLookedAtHasTheSystemsError) {
    TestFolder folder;
    const std::wstring path = folder.Path() / L"none";
    EXPECT_FALSE(HoldFolder(path));
    EXPECT_FALSE(suite::IsLink(path));
    EXPECT_NE(FactsOf(nullptr, folder.Path().wstring()).error, DWORD{ERROR_SUCCESS});
    const Handle held = HoldFolder(folder.Path().wstring());
    EXPECT_EQ(FactsOf(held.Get(), path).error, DWORD{ERROR_FILE_NOT_FOUND}) << "it has lost its name";
    EXPECT_FALSE(FactsOf(held.Get(), path).isFolder);
}

TEST(HeldFolderTest, HeldItKeepsItsName) {
    TestFolder folder;
    const std::filesystem::path inner = folder.Path() / L"inner";
    ASSERT_TRUE(CreateDirectoryW(inner.c_str(), nullptr));
    Handle held = HoldFolder(inner.wstring());
    ASSERT_TRUE(held);
    EXPECT_FALSE(MoveFileW(inner.c_str(), (folder.Path() / L"away").c_str()));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_SHARING_VIOLATION});
    std::ofstream(inner / L"file") << "x";
    EXPECT_TRUE(std::filesystem::exists(inner / L"file")) << "files within come and go";
    held.Reset();
    EXPECT_TRUE(MoveFileW(inner.c_str(), (folder.Path() / L"away").c_str()));
}

TEST(HeldFolderTest, ALinkIsToldByItsName) {
    TestFolder folder;
    const std::wstring path = folder.Path();
    const Handle held = HoldFolder(path);
    const harness::ImportHook hook(nullptr, "GetFileAttributesW", &Attributes);
    g_attributes = FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_REPARSE_POINT;
    EXPECT_TRUE(FactsOf(held.Get(), path).isLink);
    EXPECT_TRUE(suite::IsLink(path));
    g_attributes = FILE_ATTRIBUTE_DIRECTORY;
    EXPECT_FALSE(FactsOf(held.Get(), path).isLink);
    EXPECT_FALSE(suite::IsLink(path));
    g_attributes = INVALID_FILE_ATTRIBUTES;
    EXPECT_EQ(FactsOf(held.Get(), path).error, DWORD{ERROR_BAD_NETPATH});
    EXPECT_FALSE(suite::IsLink(path));
}

TEST(UserSidTest, TellsTheUserOfTheProcess) {
    const std::wstring own = suite::OwnUserSid();
    EXPECT_EQ(own.rfind(L"S-1-5-", 0), 0u);
    HANDLE token = nullptr;
    ASSERT_TRUE(OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &token));
    const Handle owned(token);
    EXPECT_EQ(suite::TokenUserSid(token), own);
}

TEST(UserSidTest, WhatIsNoneIsEmpty) {
    EXPECT_EQ(suite::SidText(nullptr), L"");
    const Handle event(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    EXPECT_EQ(suite::TokenUserSid(event.Get()), L"");
    EXPECT_FALSE(suite::TokenIsAdministrator(event.Get()));
    DWORD error = ERROR_SUCCESS;
    EXPECT_EQ(suite::OwnerSid(nullptr, error), L"");
    EXPECT_EQ(error, DWORD{ERROR_INVALID_HANDLE});
}

TEST(MutexLockTest, IsHeldForTheScopeAndByNobodyElse) {
    const Handle mutex(CreateMutexW(nullptr, FALSE, nullptr));
    const auto isFree = [&] {
        bool free = false;
        std::thread([&] { free = MutexLock(mutex.Get(), 0).IsHeld(); }).join();
        return free;
    };
    {
        const MutexLock lock(mutex.Get(), 0);
        EXPECT_TRUE(lock.IsHeld());
        EXPECT_FALSE(isFree());
    }
    EXPECT_TRUE(isFree());
    EXPECT_TRUE(isFree()) << "given back by who had it meanwhile";
}

TEST(MutexLockTest, AnOwnerThatEndedInsideItIsInNobodysWay) {
    const Handle mutex(CreateMutexW(nullptr, FALSE, nullptr));
    std::thread([&] { WaitForSingleObject(mutex.Get(), INFINITE); }).join();
    EXPECT_TRUE(MutexLock(mutex.Get(), 0).IsHeld());
}

TEST(MutexLockTest, WhatIsNoMutexIsNotHeld) {
    EXPECT_FALSE(MutexLock(nullptr, 0).IsHeld());
}
