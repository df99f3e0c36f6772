#include "windows/VideoThumbnail.h"

#include <fstream>

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

    OwnerWindow window_;
    VideoThumbnail thumbnail_;
};

TEST_F(VideoThumbnailTest, WhatIsNoReadableVideoIsNotRegistered) {
    const std::wstring picture = MakeFile(L"picture.jpg");
    for (const std::wstring& path : {std::wstring(), std::wstring(L"C:\\nowhere\\film.mp4"), picture, OwnFolder()}) {
        thumbnail_.Register(window_.PaintManager(), path);
        EXPECT_FALSE(window_.PaintManager().HasImage(path));
    }
}

TEST_F(VideoThumbnailTest, AVideoWithoutACoverIsNotRegistered) {
    const std::wstring film = MakeFile(L"film.mp4");
    thumbnail_.Register(window_.PaintManager(), film);
    thumbnail_.Register(window_.PaintManager(), film);
    EXPECT_FALSE(window_.PaintManager().HasImage(film));
    const std::wstring bare = L"film.mp4";  // without a folder
    SetCurrentDirectoryW(OwnFolder().c_str());
    thumbnail_.Register(window_.PaintManager(), bare);
    EXPECT_FALSE(window_.PaintManager().HasImage(bare));
    SetCurrentDirectoryW(ProgramFolder().c_str());
}

TEST_F(VideoThumbnailTest, AVideosCoverIsRegisteredUnderItsPath) {
    FakeShell shell;
    const std::wstring film = MakeFile(L"covered.mp4");
    thumbnail_.Register(window_.PaintManager(), film);
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
        thumbnail_.Register(window_.PaintManager(), film);
    EXPECT_EQ(shell.covers, 1);
}

TEST_F(VideoThumbnailTest, OnlyReadableVideosAreLookedAt) {
    FakeShell shell;
    for (const std::wstring& path :
         {std::wstring(), std::wstring(L"C:\\nowhere\\film.mp4"), MakeFile(L"picture.jpg"), MakeFile(L"film.MP4")}) {
        thumbnail_.Register(window_.PaintManager(), path);
        EXPECT_FALSE(window_.PaintManager().HasImage(path));
    }
    EXPECT_EQ(shell.covers, 0);
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
