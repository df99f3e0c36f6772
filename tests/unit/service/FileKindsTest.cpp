#include "service/pictures/FileKinds.h"

#include <gtest/gtest.h>

namespace FileKinds = pictures::FileKinds;

namespace {

TEST(FileKindsTest, KnowsPicturesInAnyCase) {
    for (const wchar_t* path : {L"a.jpg", L"photo.JPG", L"a.JPEG", L"C:\\x.y\\a.Png", L"a.bmp", L".jpg"}) {
        EXPECT_TRUE(FileKinds::IsImage(path)) << path;
        EXPECT_FALSE(FileKinds::IsVideo(path)) << path;
    }
}

TEST(FileKindsTest, KnowsVideosInAnyCase) {
    for (const wchar_t* path : {L"a.mp4", L"clip.tar.MOV", L"C:\\x\\a.Mp4"}) {
        EXPECT_TRUE(FileKinds::IsVideo(path)) << path;
        EXPECT_FALSE(FileKinds::IsImage(path)) << path;
    }
}

TEST(FileKindsTest, EverythingElseIsNeither) {
    for (const wchar_t* path : {L"", L".", L"a", L"jpg", L"a.", L"a.jpe", L"a.jpegx", L"a.mp", L"a.jpg.", L"a.gif",
                                L"a.jpg\\b", L"a.mp4 ", L"a.mkv", L"a.jp\u0131"}) {
        EXPECT_FALSE(FileKinds::IsImage(path)) << path;
        EXPECT_FALSE(FileKinds::IsVideo(path)) << path;
    }
}

}  // namespace
