// Which files are accepted as backgrounds, and what is told of those that are not.
#include <fstream>

#include "tests/windows/service/OwnBackgrounds.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
namespace fs = std::filesystem;

constexpr char kFormat[] = "open error pixelFormat not support(ImageReader::Open)";
constexpr char kDecoder[] = "open error creatDecoder(ImageReader::Open)";

class OwnCheckTest : public OwnBackgroundsTest {
  protected:
    void ExpectAccepted(const std::wstring& path) {
        const bool video = path.ends_with(L"mp4") || path.ends_with(L"mov");
        EXPECT_TRUE(video ? HomeService::CheckVideoFile(path) : HomeService::CheckImageFile(path)) << fs::path(path);
        EXPECT_THAT(TakeKinds(), IsEmpty()) << fs::path(path);
    }
    void ExpectRefused(const std::wstring& path, int kind) {
        if (path.ends_with(L"mp4") || path.ends_with(L"mov")) {
            // In a process of its own: a decoder of the system may be kept busy by a damaged file for ever.
            EXPECT_EQ(RunHelper(L"check \"" + path + L"\""), static_cast<DWORD>(100 + kind)) << fs::path(path);
            return;
        }
        EXPECT_FALSE(HomeService::CheckImageFile(path)) << fs::path(path);
        EXPECT_THAT(TakeKinds(), ElementsAre(kind)) << fs::path(path);
    }
};

TEST_F(OwnCheckTest, PlainPicturesAreAccepted) {
    for (const wchar_t* name : {L"baseline.jpg", L"progressive.jpg", L"plain24.png", L"alpha32.png", L"plain.bmp"}) {
        ExpectAccepted(Media(name));
    }
}

TEST_F(OwnCheckTest, PicturesOfOtherPixelsAreRefused) {
    Expect(kFormat);
    for (const wchar_t* name : {L"palette8.png", L"grey8.png", L"deep48.png", L"cmyk.jpg", L"grey.jpg"}) {
        ExpectRefused(Media(name), 0);
    }
}

TEST_F(OwnCheckTest, TheLargestPassesAndOneMoreDoesNot) {
    ExpectAccepted(Media(L"largest.jpg"));
    ExpectRefused(Media(L"too_wide.png"), 7);
    ExpectRefused(Media(L"too_high.png"), 7);
    ExpectAccepted(Media(L"largest.mp4"));
    ExpectRefused(Media(L"too_wide.mp4"), 8);
    ExpectRefused(Media(L"too_high.mov"), 8);
}

TEST_F(OwnCheckTest, VideosOfBothContainersAreAccepted) {
    ExpectAccepted(Media(L"clip.mp4"));
    ExpectAccepted(Media(L"clip.mov"));
}

TEST_F(OwnCheckTest, WhatIsNoPictureOrVideoIsRefused) {
    Expect(kDecoder);
    std::ofstream(OwnFolder() / L"empty.jpg").flush();
    std::ofstream(OwnFolder() / L"empty.mp4").flush();
    std::ofstream(OwnFolder() / L"text.png") << "no picture";
    std::ofstream(OwnFolder() / L"text.mov") << "no video";
    fs::create_directories(OwnFolder() / L"folder.jpg");
    fs::create_directories(OwnFolder() / L"folder.mp4");
    for (const wchar_t* name : {L"empty.jpg", L"empty.mp4", L"text.png", L"text.mov", L"folder.jpg", L"folder.mp4",
                                L"missing.jpg", L"missing.mp4"}) {
        ExpectRefused((OwnFolder() / name).wstring(), 0);
    }
}

TEST_F(OwnCheckTest, HeadersThatWereCutAreRefused) {
    Expect("open error");
    for (const wchar_t* name : {L"baseline.jpg", L"plain24.png", L"plain.bmp", L"clip.mp4", L"clip.mov"}) {
        const fs::path file = Own(name, std::wstring(L"cut-") + name);
        fs::resize_file(file, 20);
        ExpectRefused(file.wstring(), 0);
    }
}

TEST_F(OwnCheckTest, ACheckLeavesTheFileAloneAndClosed) {
    for (const wchar_t* name : {L"baseline.jpg", L"clip.mp4", L"too_wide.png"}) {
        const fs::path file = Own(name, name);
        const std::vector<char> before = Content(file);
        file.extension() == L".mp4" ? HomeService::CheckVideoFile(file) : HomeService::CheckImageFile(file);
        EXPECT_EQ(Content(file), before);
        EXPECT_TRUE(fs::remove(file)) << "the file is still open";
    }
}

}  // namespace
