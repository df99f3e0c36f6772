// The gallery's thumbnails of real picture files: each colour where the picture has it.
#include "service/pictures/PictureThumbnail.h"
#include "tests/windows/service/OwnBackgrounds.h"

using pictures::LoadPictureThumbnail;

namespace {

class OwnThumbnailTest : public OwnBackgroundsTest {
  protected:
    struct Thumbnail {
        int width = 0, height = 0;
        std::vector<std::uint32_t> pixels;

        // At so many hundredths of the width and the height.
        std::uint32_t At(int x, int y) const {
            return pixels.at(static_cast<std::size_t>(height * y / 100 * width + width * x / 100));
        }
    };
    static Thumbnail Load(const std::wstring& path) {
        const HBITMAP bitmap = LoadPictureThumbnail(path).Detach();
        BITMAP info = {};
        if (!bitmap || GetObjectW(bitmap, sizeof(info), &info) == 0) {
            return {};
        }
        Thumbnail thumbnail{static_cast<int>(info.bmWidth), static_cast<int>(info.bmHeight), {}};
        thumbnail.pixels.resize(static_cast<std::size_t>(thumbnail.width) * thumbnail.height);
        GetBitmapBits(bitmap, static_cast<LONG>(thumbnail.pixels.size() * sizeof(std::uint32_t)),
                      thumbnail.pixels.data());
        DeleteObject(bitmap);
        return thumbnail;
    }
};

TEST_F(OwnThumbnailTest, PlainPicturesKeepTheirColour) {
    const std::vector<std::pair<const wchar_t*, std::uint32_t>> pictures = {
        {L"red.jpg", 0xC02020}, {L"green.jpg", 0x20A040}, {L"blue.png", 0x2040C0}};
    for (const auto& [name, color] : pictures) {
        const Thumbnail thumbnail = Load(Media(name));
        ASSERT_GT(thumbnail.width, 0);
        for (const int place : {0, 50, 99}) {
            EXPECT_TRUE(IsAbout(thumbnail.At(place, place), color)) << std::hex << thumbnail.At(place, place);
        }
    }
}

TEST_F(OwnThumbnailTest, ACornerStaysInItsCorner) {
    const Thumbnail thumbnail = Load(Media(L"corner.jpg"));
    ASSERT_GT(thumbnail.width, 0);
    EXPECT_TRUE(IsAbout(thumbnail.At(0, 0), 0xFF0000));
    EXPECT_TRUE(IsAbout(thumbnail.At(45, 45), 0xFF0000));
    EXPECT_TRUE(IsAbout(thumbnail.At(60, 20), 0xFFFFFF));
    EXPECT_TRUE(IsAbout(thumbnail.At(20, 60), 0xFFFFFF));
    EXPECT_TRUE(IsAbout(thumbnail.At(99, 99), 0xFFFFFF));
}

// Higher than one band of rows, so that each band has to come from its own place.
TEST_F(OwnThumbnailTest, EveryBandOfRowsIsRead) {
    const Thumbnail thumbnail = Load(Media(L"plain24.png"));  // blue at the top, gold at the bottom
    ASSERT_GT(thumbnail.height, 4);
    const auto red = [&](int y) { return static_cast<int>(thumbnail.At(50, y) >> 16 & 0xFF); };
    EXPECT_LT(red(0), 0x30);
    EXPECT_GT(red(99), 0xF0);
    for (int y = 10; y < 100; y += 10) {
        EXPECT_GT(red(y), red(y - 10)) << y;
        EXPECT_NEAR(red(y), 0x1E + (0xFF - 0x1E) * (y / 100.0), 12) << y;
    }
}

TEST_F(OwnThumbnailTest, WhatIsNoPictureHasNone) {
    EXPECT_EQ(Load(Media(L"clip.mp4")).width, 0);
    EXPECT_EQ(Load(L"C:\\nowhere.jpg").width, 0);
}

}  // namespace
