// What is stored of each kind of file, under each kind of name.
#include <fstream>

#include "service/pictures/PictureThumbnail.h"
#include "tests/windows/service/OwnBackgrounds.h"

using pictures::LoadPictureThumbnail;

namespace {

using testing::IsEmpty;
namespace fs = std::filesystem;

class OwnFormatTest : public OwnBackgroundsTest {
  protected:
    void SetUp() override {
        OwnBackgroundsTest::SetUp();
        Start();
    }
    // The stored picture.
    Decoded Add(const fs::path& file) {
        const int number = static_cast<int>(Saved().size());
        EXPECT_TRUE(Model().AddCustomBackground(file)) << file;
        return Decode(Picture(number));
    }
    // The picture's file with a camera's note of how it was held.
    fs::path Turned(const wchar_t* medium, char orientation) const {
        std::vector<char> file = Content(Media(medium));
        const std::string note(
            "\xFF\xE1\x00\x22"
            "Exif\x00\x00II*\x00\x08\x00\x00\x00\x01\x00\x12\x01\x03\x00\x01\x00\x00\x00",
            4 + 6 + 8 + 2 + 8);
        std::string segment = note + std::string({orientation, 0, 0, 0}) + std::string(4, '\0');
        file.insert(file.begin() + 2, segment.begin(), segment.end());
        const fs::path path = OwnFolder() / (L"turned" + std::to_wstring(orientation) + L".jpg");
        std::ofstream(path, std::ios::binary).write(file.data(), static_cast<std::streamsize>(file.size()));
        return path;
    }
};

TEST_F(OwnFormatTest, EveryPictureBecomesAJpegOfItsSize) {
    for (const wchar_t* name : {L"baseline.jpg", L"progressive.jpg", L"plain24.png", L"alpha32.png", L"plain.bmp"}) {
        const Decoded picture = Add(Media(name));
        EXPECT_EQ(picture.width, 320u) << fs::path(name);
        EXPECT_EQ(picture.height, 200u) << fs::path(name);
        EXPECT_TRUE(IsJpeg(Picture(static_cast<int>(Saved().size()) - 1))) << fs::path(name);
    }
    ExpectAllAgree();
}

TEST_F(OwnFormatTest, ColoursStay) {
    EXPECT_TRUE(IsAbout(Add(Media(L"red.jpg")).At(300, 200), 0xC02020));
    EXPECT_TRUE(IsAbout(Add(Media(L"blue.png")).At(300, 200), 0x2040C0));
    const Decoded corner = Add(Media(L"corner.jpg"));
    EXPECT_TRUE(IsAbout(corner.At(40, 40), 0xFF0000));
    EXPECT_TRUE(IsAbout(corner.At(280, 160), 0xFFFFFF));
}

TEST_F(OwnFormatTest, WhatIsTransparentLiesOnWhite) {
    const Decoded picture = Add(Media(L"alpha32.png"));
    EXPECT_TRUE(IsAbout(picture.At(20, 20), 0xFFFFFF));
    EXPECT_TRUE(IsAbout(picture.At(160, 100), 0xFF0000));
}

TEST_F(OwnFormatTest, APhotoIsPutUpright) {
    // Where the corner of its own colour goes.
    struct Case {
        char orientation;
        bool swaps, right, bottom;
    };
    for (const Case& c : {Case{1, false, false, false}, Case{2, false, true, false}, Case{3, false, true, true},
                          Case{4, false, false, true}, Case{5, true, false, false}, Case{6, true, true, false},
                          Case{7, true, true, true}, Case{8, true, false, true}}) {
        const Decoded picture = Add(Turned(L"corner.jpg", c.orientation));
        ASSERT_EQ(picture.width, c.swaps ? 200u : 320u) << int{c.orientation};
        ASSERT_EQ(picture.height, c.swaps ? 320u : 200u) << int{c.orientation};
        for (const bool right : {false, true}) {
            for (const bool bottom : {false, true}) {
                const std::uint32_t pixel =
                    picture.At(right ? picture.width - 20 : 20, bottom ? picture.height - 20 : 20);
                const bool marked = right == c.right && bottom == c.bottom;
                EXPECT_TRUE(IsAbout(pixel, marked ? 0xFF0000 : 0xFFFFFF))
                    << int{c.orientation} << " right " << right << " bottom " << bottom;
            }
        }
    }
}

TEST_F(OwnFormatTest, ThePictureCarriesItsThumbnail) {
    Add(Media(L"corner.jpg"));
    const HBITMAP small = LoadPictureThumbnail(Picture(0)).Detach();
    BITMAP size = {};
    ASSERT_NE(GetObjectW(small, sizeof(size), &size), 0);
    EXPECT_EQ(size.bmWidth, 156);
    EXPECT_EQ(size.bmHeight, 96);
    DeleteObject(small);
    // In the file itself: it comes from the beginning alone.
    std::vector<char> content = Content(Picture(0));
    ASSERT_GT(content.size(), 1024u);
    const fs::path beginning = OwnFolder() / L"beginning.jpg";
    std::ofstream(beginning, std::ios::binary).write(content.data(), static_cast<std::streamsize>(content.size() - 64));
    const HBITMAP again = LoadPictureThumbnail(beginning).Detach();
    EXPECT_NE(again, nullptr);
    DeleteObject(again);
}

TEST_F(OwnFormatTest, AVideosCoverIsABitmapFileAndTheVideoStaysWhereItLies) {
    const fs::path clip = Own(L"clip.mp4", L"clip.mp4");
    const Decoded cover = Add(clip);
    EXPECT_TRUE(IsBitmap(Picture(0)));
    EXPECT_EQ(cover.width, 320u);
    EXPECT_EQ(cover.height, 240u);
    EXPECT_EQ(Text(L"lumi_camera_background_image_path"), clip.wstring());
    EXPECT_EQ(Saved()[0].sourcePath, clip.wstring());
    EXPECT_EQ(Saved()[0].isVideo, 1);
    ExpectAllAgree();
}

TEST_F(OwnFormatTest, ACoverIsSmallAndNotDark) {
    EXPECT_EQ(Add(Media(L"largest.mp4")).width, 384u);
    const Decoded light = Add(Media(L"dark_start.mp4"));
    EXPECT_TRUE(IsAbout(light.At(100, 100), 0xFFFFFF));
}

TEST_F(OwnFormatTest, TheLargestPictureIsAdded) {
    const Decoded picture = Add(Media(L"largest.jpg"));
    EXPECT_EQ(picture.width, 4096u);
    EXPECT_EQ(picture.height, 4096u);
    EXPECT_EQ(Saved().size(), 1u);
}

TEST_F(OwnFormatTest, NamesOfEveryKindAreFound) {
    const std::wstring longest(259 - OwnFolder().wstring().size() - 1 - 4, L'x');
    for (const std::wstring& name :
         {std::wstring(L"my holiday  photo.jpg"), std::wstring(L"\u5047\u65E5\u7167\u7247.JPEG"),
          std::wstring(L"sun \U0001F31E.Jpg"), std::wstring(L"a.b.c.JPG"), longest + L".jpg"}) {
        const fs::path file = Own(L"red.jpg", name);
        EXPECT_TRUE(HomeService::CheckImageFile(file)) << file;
        EXPECT_TRUE(IsAbout(Add(file).At(300, 200), 0xC02020)) << file;
        EXPECT_EQ(Saved().back().sourcePath, file.wstring());
    }
    const fs::path video = Own(L"clip.mov", L"\u6D77 \U0001F30A.MOV");
    EXPECT_TRUE(HomeService::CheckVideoFile(video));
    EXPECT_EQ(Add(video).width, 320u);
    EXPECT_THAT(TakeKinds(), IsEmpty());
    // And again after a restart.
    Start();
    EXPECT_EQ(gallery_.size(), 6u);
    ExpectAllAgree();
    EXPECT_TRUE(Model().SelectCustomBackground(Name(5)));
    EXPECT_EQ(Text(L"lumi_camera_background_image_path"), video.wstring());
}

TEST_F(OwnFormatTest, ANameThatHoldsTheListsSeparatorsDoesNoHarm) {
    Add(Own(L"red.jpg", L"first.jpg"));
    const std::wstring evil = L"a[(&;i!-)]b[(&,f!=)]c";
    EXPECT_TRUE(Model().AddCustomBackground(Own(L"green.jpg", evil + L".jpg")));
    const bool video = Model().AddCustomBackground(Own(L"clip.mp4", evil + L".mp4"));
    Add(Own(L"blue.png", L"last.png"));
    Start();
    EXPECT_EQ(gallery_.size(), video ? 4u : 3u);
    ExpectAllAgree();
}

}  // namespace
