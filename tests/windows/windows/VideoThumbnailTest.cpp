#include "windows/VideoThumbnail.h"

#include <gmock/gmock.h>

#include <atomic>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <vector>

#include "suite/common/Handle.h"
#include "tests/support/ImportHook.h"
#include "tests/windows/support/Screen.h"
#include "tests/windows/windows/FakeShell.h"
#include "tests/windows/windows/WindowTests.h"

namespace {

TEST(VideoThumbnail, KnowsVideosByTheirExtensionInLowerCase) {
    for (const wchar_t* extension : {L".mp4", L".avi", L".mkv", L".mov", L".flv", L".rmvb", L".wmv"})
        EXPECT_TRUE(VideoThumbnail::IsVideoPath(std::wstring(L"C:\\Films\\one") + extension));
    EXPECT_TRUE(VideoThumbnail::IsVideoPath(L".mp4"));
    EXPECT_TRUE(VideoThumbnail::IsVideoPath(L"C:\\Films\\one.jpg.mp4"));
    EXPECT_TRUE(VideoThumbnail::IsVideoPath(L"日本.mp4"));
}

TEST(VideoThumbnail, EverythingElseIsNone) {
    for (const wchar_t* path : {L"", L"one", L"mp4", L"one.MP4", L"one.Mp4", L"one.mp", L"one.mp44", L"one.mp4 ",
                                L"one.", L"one.mp4.jpg", L"C:\\Films.mp4\\one", L"one.mpeg", L"one.mp4\\"})
        EXPECT_FALSE(VideoThumbnail::IsVideoPath(path)) << std::wstring(path).size();
}

class VideoThumbnailTest : public ProgramTest {
  protected:
    std::wstring MakeFile(const std::wstring& name) {
        const std::wstring path = OwnFolder() + name;
        std::ofstream(path.c_str()) << "no film";
        return path;
    }

    // Paints until the file has been looked at.
    void Register(const std::wstring& path) {
        thumbnail_.Register(window_.PaintManager(), path);
        ASSERT_TRUE(Input::PumpUntil([this] { return !thumbnail_.IsLooking(); }));
        thumbnail_.Register(window_.PaintManager(), path);
    }

    OwnerWindow window_;
    VideoThumbnail thumbnail_;
};

TEST_F(VideoThumbnailTest, WhatIsNoReadableVideoIsNotRegistered) {
    const std::wstring picture = MakeFile(L"picture.jpg");
    for (const std::wstring& path : {std::wstring(), std::wstring(L"C:\\nowhere\\film.mp4"), picture, OwnFolder()}) {
        Register(path);
        EXPECT_FALSE(window_.PaintManager().HasImage(path));
    }
}

TEST_F(VideoThumbnailTest, AVideoWithoutACoverIsNotRegistered) {
    const std::wstring film = MakeFile(L"film.mp4");
    Register(film);
    Register(film);
    EXPECT_FALSE(window_.PaintManager().HasImage(film));
    const std::wstring bare = L"film.mp4";  // without a folder
    SetCurrentDirectoryW(OwnFolder().c_str());
    Register(bare);
    EXPECT_FALSE(window_.PaintManager().HasImage(bare));
    SetCurrentDirectoryW(ProgramFolder().c_str());
}

TEST_F(VideoThumbnailTest, AVideosCoverIsRegisteredUnderItsPath) {
    FakeShell shell;
    const std::wstring film = MakeFile(L"covered.mp4");
    Register(film);
    EXPECT_TRUE(window_.PaintManager().HasImage(film));
    EXPECT_EQ(shell.folder + L"\\" + shell.file, film);
    EXPECT_FALSE(shell.locationAsked) << "the extractor's own size applies";

    // Its size is 64 by 36: drawn in that, pixel by pixel, its quarters meet in the middle, where scaling has made each
    // of the two pixels as much of the other's colour as the other of its own.
    DuiLib::CControlUI& area = window_.Control(L"wnd_container");
    window_.PaintManager().UpdateLayout();
    area.SetBkImage(L"file='" + film + L"' source='0,0,64,36' dest='0,0,64,36'");
    const DuiLib::Rect& place = area.GetPos();
    const Picture picture = PaintedBy(window_.PaintManager());
    const auto at = [&](int x, int y) { return picture.At({place.left + x, place.top + y}); };
    EXPECT_EQ(at(5, 5), FakeShell::kTopLeft);
    EXPECT_EQ(at(58, 5), FakeShell::kTopRight);
    EXPECT_EQ(at(5, 30), FakeShell::kBottomLeft);
    EXPECT_EQ(at(58, 30), FakeShell::kBottomRight);
    for (const int shift : {0, 8, 16}) {
        const auto sum = [shift](DWORD a, DWORD b) {
            return static_cast<int>(a >> shift & 0xFF) + static_cast<int>(b >> shift & 0xFF);
        };
        EXPECT_NEAR(sum(at(31, 5), at(32, 5)), sum(FakeShell::kTopLeft, FakeShell::kTopRight), 3) << shift;
        EXPECT_NEAR(sum(at(5, 17), at(5, 18)), sum(FakeShell::kTopLeft, FakeShell::kBottomLeft), 3) << shift;
    }
}

TEST_F(VideoThumbnailTest, ACoverThatIsThereIsNotMadeAgain) {
    FakeShell shell;
    const std::wstring film = MakeFile(L"known.mp4");
    for (int paint = 0; paint < 3; ++paint)
        Register(film);
    EXPECT_EQ(shell.covers, 1);
}

TEST_F(VideoThumbnailTest, OnlyReadableVideosAreLookedAt) {
    FakeShell shell;
    for (const std::wstring& path :
         {std::wstring(), std::wstring(L"C:\\nowhere\\film.mp4"), MakeFile(L"picture.jpg"), MakeFile(L"film.MP4")}) {
        Register(path);
        EXPECT_FALSE(window_.PaintManager().HasImage(path));
    }
    EXPECT_EQ(shell.covers, 0);
}

// How long the test's thread has waited for an event, wait by wait.
std::vector<DWORD> g_limits;
DWORD g_thread = 0;
decltype(&WaitForSingleObject) g_wait = nullptr;

DWORD WINAPI NoteLimit(HANDLE object, DWORD ms) {
    if (GetCurrentThreadId() == g_thread) {
        g_limits.push_back(ms);
    }
    return g_wait(object, ms);
}

// An extractor that hangs, a share that is gone: the paint goes on, and the window is painted again when it came.
TEST_F(VideoThumbnailTest, ACoverThatTakesLongIsRegisteredLater) {
    const suite::Handle gate(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    FakeShell shell;
    shell.gate = gate.Get();
    const std::wstring film = MakeFile(L"slow.mp4");
    const HWND window = window_.PaintManager().GetPaintWindow();
    ShowWindow(window, SW_SHOWNOACTIVATE);
    {
        g_thread = GetCurrentThreadId();
        g_limits.clear();
        const harness::ImportHook hook(nullptr, "WaitForSingleObject", &NoteLimit);
        g_wait = hook.Original<decltype(g_wait)>();
        for (int paint = 0; paint < 3; ++paint)
            thumbnail_.Register(window_.PaintManager(), film);
        EXPECT_THAT(g_limits, testing::ElementsAre(150)) << "by the first paint only";
    }
    EXPECT_TRUE(thumbnail_.IsLooking()) << "one thread, whom nobody waits for";
    EXPECT_FALSE(window_.PaintManager().HasImage(film));
    Input::Pump();
    ValidateRect(window, nullptr);
    SetEvent(gate.Get());
    EXPECT_TRUE(harness::WaitUntil([&] { return GetUpdateRect(window, nullptr, FALSE) != FALSE; }));
    thumbnail_.Register(window_.PaintManager(), film);
    EXPECT_TRUE(window_.PaintManager().HasImage(film));
    EXPECT_EQ(shell.covers, 1);
}

TEST_F(VideoThumbnailTest, AnotherPathDoesNotWaitForTheOneBefore) {
    const suite::Handle gate(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    const std::wstring slow = MakeFile(L"hangs.mp4");
    const std::wstring film = MakeFile(L"next.mp4");
    FakeShell shell;
    shell.gate = gate.Get();
    thumbnail_.Register(window_.PaintManager(), slow);
    EXPECT_TRUE(thumbnail_.IsLooking());
    shell.gate = nullptr;
    Register(film);
    EXPECT_TRUE(window_.PaintManager().HasImage(film));
    SetEvent(gate.Get());
    EXPECT_TRUE(harness::WaitUntil([&] { return shell.covers == 2; }));
}

TEST_F(VideoThumbnailTest, FourThreadsAreLeftBehindAtMost) {
    const suite::Handle gate(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    FakeShell shell;
    shell.gate = gate.Get();
    for (int i = 0; i < 6; ++i)
        thumbnail_.Register(window_.PaintManager(), MakeFile(L"hangs" + std::to_wstring(i) + L".mp4"));
    EXPECT_FALSE(thumbnail_.IsLooking()) << "the fifth and the sixth were not begun";
    SetEvent(gate.Get());
    EXPECT_TRUE(harness::WaitUntil([&] { return shell.covers == 4; }));
    const std::wstring film = MakeFile(L"after.mp4");
    EXPECT_TRUE(Input::PumpUntil([&] {
        thumbnail_.Register(window_.PaintManager(), film);
        return window_.PaintManager().HasImage(film);
    })) << "they have made room";
    EXPECT_EQ(shell.covers, 5);
}

std::atomic<int> g_opened = 0;
const harness::ImportHook* g_create = nullptr;

HANDLE WINAPI CountOpened(const wchar_t* path, DWORD access, DWORD share, SECURITY_ATTRIBUTES* security, DWORD creation,
                          DWORD flags, HANDLE pattern) {
    g_opened += std::wstring(path).ends_with(L"fails.mp4") ? 1 : 0;
    return g_create->Original<decltype(&CreateFileW)>()(path, access, share, security, creation, flags, pattern);
}

std::atomic<int> g_looks = 0;
const harness::ImportHook* g_attributes = nullptr;

BOOL WINAPI CountLooks(const wchar_t* path, GET_FILEEX_INFO_LEVELS level, void* facts) {
    g_looks += std::wstring(path).ends_with(L"fails.mp4") ? 1 : 0;
    return g_attributes->Original<decltype(&GetFileAttributesExW)>()(path, level, facts);
}

ULONGLONG g_tick = 0;

ULONGLONG WINAPI Tick() {
    return g_tick;
}

// Its time is looked at once in five seconds; the file is not opened again.
TEST_F(VideoThumbnailTest, APathThatFailedIsLeftAlone) {
    const harness::ImportHook opened(nullptr, "CreateFileW", &CountOpened);
    g_create = &opened;
    const harness::ImportHook looks(nullptr, "GetFileAttributesExW", &CountLooks);
    g_attributes = &looks;
    const harness::ImportHook tick(nullptr, "GetTickCount64", &Tick);
    g_tick = 1'000'000;
    const std::wstring film = MakeFile(L"fails.mp4");
    g_opened = 0;
    g_looks = 0;
    for (int paint = 0; paint < 20; ++paint)
        Register(film);
    EXPECT_EQ(g_looks, 1);
    g_tick += 4999;
    Register(film);
    EXPECT_EQ(g_looks, 1);
    g_tick += 1;
    Register(film);
    EXPECT_EQ(g_looks, 2);
    Register(film);
    EXPECT_EQ(g_looks, 2) << "five seconds from the last look on";
    EXPECT_EQ(g_opened, 1);
}

TEST_F(VideoThumbnailTest, AFileThatHasChangedIsLookedAtAgain) {
    const harness::ImportHook tick(nullptr, "GetTickCount64", &Tick);
    g_tick = 1'000'000;
    const std::wstring film = MakeFile(L"changes.mp4");
    Register(film);
    ASSERT_FALSE(window_.PaintManager().HasImage(film));
    FakeShell shell;
    std::filesystem::last_write_time(film, std::filesystem::file_time_type::clock::now() - std::chrono::hours(1));
    Register(film);
    EXPECT_EQ(shell.covers, 0);
    g_tick += 5000;
    Register(film);
    EXPECT_TRUE(window_.PaintManager().HasImage(film));
}

// Each paint asks for the cover of the background in use.
TEST_F(MainWindowTest, APaintRegistersTheCoverOfTheBackgroundInUse) {
    FakeShell shell;
    const std::wstring film = OwnFolder() + L"background.mp4";
    std::ofstream(film.c_str()) << "no film";
    Write(L"lumi_camera_background_image_path", film);
    ASSERT_FALSE(Manager().HasImage(film));
    InvalidateRect(Window().GetHWND(), nullptr, FALSE);
    EXPECT_EQ(SendMessageW(Window().GetHWND(), WM_PAINT, 0, 0), 0);
    EXPECT_TRUE(Input::PumpUntil([&] { return Manager().HasImage(film); }));
    EXPECT_EQ(shell.covers, 1);
    EXPECT_NE(shell.thread, GetCurrentThreadId());
    EXPECT_FALSE(GetUpdateRect(Window().GetHWND(), nullptr, FALSE));
    // The file is let go of.
    EXPECT_TRUE(DeleteFileW(film.c_str()));
}

}  // namespace
