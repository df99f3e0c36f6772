// Neighbours that hold the program's files for a moment. PIXORA_HELD_FILES says how many are added and deleted.
#include <atomic>
#include <climits>
#include <fstream>
#include <iostream>
#include <thread>

#include "service/pictures/BackgroundPicture.h"
#include "suite/common/Patience.h"
#include "tests/support/Environment.h"
#include "tests/support/ImportHook.h"
#include "tests/windows/service/OwnBackgrounds.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
namespace fs = std::filesystem;

constexpr wchar_t kHeld[] = L"PixoraHeldFiles";

suite::Handle Hold(const fs::path& path, DWORD share) {
    return suite::Handle(
        CreateFileW(path.c_str(), GENERIC_READ, share, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
}

class OwnNeighbourTest : public OwnBackgroundsTest {};

TEST_F(OwnNeighbourTest, AScannerThatHoldsEachNewFileCostsNone) {
    Start();
    const suite::Handle held(CreateSemaphoreW(nullptr, 0, LONG_MAX, kHeld));
    harness::ChildProcess scanner(L"service_helper.exe", L"hold \"" + UserFolder().wstring() + L"\" " + kHeld);
    // It has begun when it holds a file of the test's own.
    ASSERT_TRUE(harness::WaitUntil([&] {
        DeleteFileW((UserFolder() / L"begin").c_str());
        suite::Handle(CreateFileW((UserFolder() / L"begin").c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                                  FILE_ATTRIBUTE_NORMAL, nullptr));
        return WaitForSingleObject(held.Get(), 100) == WAIT_OBJECT_0;
    }));
    const int rounds = FromEnvironment("PIXORA_HELD_FILES", 20);
    for (int round = 0; round < rounds; ++round) {
        SCOPED_TRACE(round);
        ASSERT_TRUE(Model().AddCustomBackground(Media(round % 4 == 0 ? L"clip.mp4" : L"red.jpg")));
        ASSERT_TRUE(fs::exists(Picture(0)));
        ASSERT_THAT(GalleryNames(), ElementsAre(Name(0)));
        ASSERT_TRUE(Model().DeleteCustomBackground(Name(0)));
        ASSERT_FALSE(fs::exists(Picture(0)));
    }
    EXPECT_THAT(TakeKinds(), IsEmpty());
    int times = 0;
    while (WaitForSingleObject(held.Get(), 0) == WAIT_OBJECT_0) {
        ++times;
    }
    std::cout << rounds << " added and deleted, " << times << " files held meanwhile" << std::endl;
    EXPECT_GE(times, rounds / 4) << "a busy machine lets the scanner come late to many a file";
    scanner.Kill();
}

TEST_F(OwnNeighbourTest, APictureThatIsHeldForASecondIsReplacedAndDeleted) {
    Start();
    ASSERT_TRUE(Model().AddCustomBackground(Media(L"red.jpg")));
    for (const DWORD share : {DWORD{0}, DWORD{FILE_SHARE_READ | FILE_SHARE_WRITE}}) {
        suite::Handle held = Hold(Picture(0), share);
        ASSERT_TRUE(held);
        std::jthread later([&] {
            Sleep(300);
            held.Reset();
        });
        if (share == 0) {
            EXPECT_TRUE(pictures::BackgroundPicture::Make(Media(L"green.jpg"), false, Picture(0)) ==
                        pictures::BackgroundPicture::Result::kMade);
        } else {
            EXPECT_TRUE(Model().DeleteCustomBackground(Name(0)));
            EXPECT_FALSE(fs::exists(Picture(0)));
        }
    }
}

suite::Handle g_unfinished;
std::atomic<int> g_waits = 0;

void WINAPI LetGoOfUnfinished(DWORD) {
    ++g_waits;
    g_unfinished.Reset();
}

// One that is still there from before, and held, is waited for: a picture's and a cover's.
TEST_F(OwnNeighbourTest, AnUnfinishedPictureThatIsHeldForAMomentIsWrittenAgain) {
    Start();
    for (const wchar_t* name : {L"red.jpg", L"clip.mp4"}) {
        const fs::path unfinished = pictures::BackgroundPicture::UnfinishedName(Picture(0));
        std::ofstream(unfinished) << "left from before";
        g_unfinished = Hold(unfinished, 0);
        ASSERT_TRUE(g_unfinished);
        g_waits = 0;
        {
            const harness::ImportHook hook(nullptr, "Sleep", &LetGoOfUnfinished);
            EXPECT_TRUE(pictures::BackgroundPicture::Make(Media(name), name == std::wstring(L"clip.mp4"), Picture(0)) ==
                        pictures::BackgroundPicture::Result::kMade);
        }
        EXPECT_EQ(g_waits, 1);
        g_unfinished.Reset();
        EXPECT_GT(Decode(Picture(0)).width, 0u);
        EXPECT_FALSE(fs::exists(unfinished));
    }
}

TEST_F(OwnNeighbourTest, APictureThatIsHeldForLongerStaysAndTheLogTells) {
    Start();
    ASSERT_TRUE(Model().AddCustomBackground(Media(L"red.jpg")));
    {
        const suite::Handle held = Hold(Picture(0), FILE_SHARE_READ | FILE_SHARE_WRITE);
        ASSERT_TRUE(held);
        EXPECT_TRUE(Model().DeleteCustomBackground(Name(0)));
        EXPECT_TRUE(fs::exists(Picture(0)));
    }
    const std::string line = "A picture stays, error code: 32(BackgroundPicture::Remove)";
    EXPECT_EQ(LogLines(line), 1);
    EXPECT_THAT(GalleryNames(), IsEmpty());
    ASSERT_TRUE(Model().AddCustomBackground(Media(L"red.jpg")));
    EXPECT_TRUE(Model().DeleteCustomBackground(Name(0)));
    EXPECT_FALSE(fs::exists(Picture(0)));
    pictures::BackgroundPicture::Remove(Picture(0));
    EXPECT_EQ(LogLines(line), 1) << "what is gone is not told";
}

TEST(Patience, OnlyWhatANeighbourCausesIsTriedAgain) {
    for (const DWORD error : {DWORD{ERROR_ACCESS_DENIED}, DWORD{ERROR_SHARING_VIOLATION}, DWORD{ERROR_LOCK_VIOLATION},
                              DWORD{ERROR_DELETE_PENDING}, DWORD{ERROR_USER_MAPPED_FILE}}) {
        int attempts = 0;
        EXPECT_TRUE(suite::TryWhileHeld([&] {
            SetLastError(error);
            return ++attempts == 3;
        })) << error;
        EXPECT_EQ(attempts, 3) << error;
    }
    for (const DWORD error : {DWORD{ERROR_FILE_NOT_FOUND}, DWORD{ERROR_PATH_NOT_FOUND}, DWORD{ERROR_DISK_FULL}}) {
        int attempts = 0;
        EXPECT_FALSE(suite::TryWhileHeld([&] {
            ++attempts;
            SetLastError(error);
            return false;
        }));
        EXPECT_EQ(GetLastError(), error);
        EXPECT_EQ(attempts, 1) << error;
    }
}

TEST(Patience, EndsAfterTwoSeconds) {
    EXPECT_EQ(suite::kLongestHoldMs, 2000u);
    int attempts = 0;
    const ULONGLONG start = GetTickCount64();
    EXPECT_FALSE(suite::TryWhileHeld([&] {
        ++attempts;
        SetLastError(ERROR_SHARING_VIOLATION);
        return false;
    }));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_SHARING_VIOLATION});
    EXPECT_GE(GetTickCount64() - start, 1900u);
    EXPECT_EQ(attempts, 24) << "after 10, 20, 40, 80 ms, eighteen times 100, and what is left of two seconds";
}

}  // namespace
