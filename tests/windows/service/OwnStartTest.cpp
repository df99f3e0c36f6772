// What a start makes of what an earlier run, an earlier version or somebody else has left.
#include <fstream>

#include "tests/windows/service/OwnBackgrounds.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
namespace fs = std::filesystem;

class OwnStartTest : public OwnBackgroundsTest {
  protected:
    static std::wstring Piece(int number, bool video, const fs::path& picture, const fs::path& source) {
        return Name(number) + L"[(&,f!=)]0[(&,f!=)]" + (video ? L"1" : L"0") + L"[(&,f!=)]" + picture.wstring() +
               L"[(&,f!=)]" + source.wstring() + L"[(&;i!-)]";
    }
    static void SetGroup(const std::wstring& group) { Write(L"lumi_camera_custom_img_group", group); }
};

TEST_F(OwnStartTest, TheFirstStartMakesTheFoldersAndShowsNothing) {
    Start();
    EXPECT_TRUE(fs::is_directory(UserFolder()));
    EXPECT_THAT(gallery_, IsEmpty());
    EXPECT_EQ(Number(L"sync_custom"), 1);
    EXPECT_FALSE(Read(L"lumi_camera_custom_img_group")) << "an empty list is not written";
}

TEST_F(OwnStartTest, ThePersonAtTheScreenHasAFolder) {
    EXPECT_TRUE(HomeService::GetUserSidString().starts_with(L"S-1-"));
    const auto model = MakeModel();
    model->InitCustomImage();
    EXPECT_TRUE(fs::is_directory(UserFolder(HomeService::GetUserSidString())));
}

TEST_F(OwnStartTest, WithoutAUserNothingIsDone) {
    Expect("Get user SID failed(HomeService::InitCustomImage)");
    Start(L"");
    EXPECT_EQ(LogLines("Get user SID failed(HomeService::InitCustomImage)"), 1);
    EXPECT_FALSE(fs::exists(Base()));
    EXPECT_FALSE(Model().AddCustomBackground(Media(L"red.jpg")));
    EXPECT_THAT(TakeKinds(), ElementsAre(10));
}

TEST_F(OwnStartTest, WithoutTheSharedFolderNothingIsDone) {
    Expect("Create Res Folder Failed(HomeService::InitCustomImage)");
    std::ofstream(Base()) << "no folder";
    SetGroup(Piece(0, false, Picture(0), L"D:\\a.jpg"));
    const Values before = AllValues();
    Start();
    EXPECT_THAT(gallery_, IsEmpty());
    Values after = AllValues();
    EXPECT_EQ(after, before) << "what cannot be loaded is not overwritten";
    fs::remove(Base());
}

TEST_F(OwnStartTest, DamagedPiecesAreDroppedAndTheOthersShown) {
    Start();
    for (int i = 0; i < 3; ++i) {
        Model().AddCustomBackground(Media(L"red.jpg"));
    }
    const Records good = Saved();
    SetGroup(Piece(0, false, Picture(0), L"a") + L"four[(&,f!=)]1[(&,f!=)]0[(&,f!=)]x[(&;i!-)]" + L"rubbish[(&;i!-)]" +
             Piece(0, false, Picture(1), L"the name again") + L"none_background_btn[(&,f!=)]1[(&,f!=)]0[(&,f!=)]" +
             Picture(1).wstring() + L"[(&,f!=)]x[(&;i!-)]" + Piece(2, false, Picture(2), L"c"));
    Start();
    EXPECT_THAT(GalleryNames(), ElementsAre(Name(0), Name(2)));
    EXPECT_TRUE(Model().DeleteCustomBackground(Name(0)));
    EXPECT_TRUE(Model().DeleteCustomBackground(Name(2)));
    EXPECT_THAT(gallery_, IsEmpty());
    EXPECT_EQ(Text(L"lumi_camera_custom_img_group"), L"four[(&,f!=)]1[(&,f!=)]0[(&,f!=)]x[(&;i!-)]rubbish[(&;i!-)]" +
                                                         Piece(0, false, Picture(1), L"the name again") +
                                                         L"none_background_btn[(&,f!=)]1[(&,f!=)]0[(&,f!=)]" +
                                                         Picture(1).wstring() + L"[(&,f!=)]x[(&;i!-)]")
        << "what is not understood is not deleted";
}

TEST_F(OwnStartTest, ThirtyTwoOfALongListAreShownAndTheRestIsKept) {
    Start();
    ASSERT_TRUE(Model().AddCustomBackground(Media(L"red.jpg")));
    std::wstring shown;
    std::wstring rest;
    for (int i = 0; i < 32; ++i) {
        shown += Piece(i, false, Picture(0), L"a");
    }
    for (int i = 32; i < 2000; ++i) {
        rest += Piece(i, false, Picture(0), L"a");
    }
    rest += L"custom_background_btn_99999999999999999999[(&,f!=)]0[(&,f!=)]0[(&,f!=)]x[(&,f!=)]y[(&;i!-)]";
    SetGroup(rest + shown);
    Start();
    EXPECT_EQ(gallery_.size(), 32u);
    EXPECT_TRUE(Model().IsCustomFull());
    EXPECT_TRUE(Model().DeleteCustomBackground(Name(31)));
    const std::wstring left = Text(L"lumi_camera_custom_img_group");
    EXPECT_TRUE(left.ends_with(rest));
    EXPECT_EQ(Saved().size(), 31u + 1969u);
}

TEST_F(OwnStartTest, AListOfAnotherTypeIsLeftAlone) {
    const std::string line =
        "lumi_camera_custom_img_group is no text, it is left alone(SettingsStore::MayWriteCustomImages)";
    Expect(line);
    Write(L"lumi_camera_custom_img_group", 4711);
    Start();
    EXPECT_THAT(gallery_, IsEmpty());
    EXPECT_FALSE(Model().AddCustomBackground(Media(L"red.jpg")));
    EXPECT_THAT(TakeKinds(), ElementsAre(10));
    EXPECT_EQ(Number(L"lumi_camera_custom_img_group"), 4711);
    EXPECT_FALSE(fs::exists(Picture(0)));
    EXPECT_FALSE(Read(L"background_selected_btnName")) << "nothing is selected";
    // Also when it comes to be of another type later.
    Write(L"lumi_camera_custom_img_group", L"");
    Start();
    ASSERT_TRUE(Model().AddCustomBackground(Media(L"red.jpg")));
    Write(L"lumi_camera_custom_img_group", 4712);
    EXPECT_TRUE(Model().DeleteCustomBackground(Name(0)));
    EXPECT_EQ(Number(L"lumi_camera_custom_img_group"), 4712);
    EXPECT_EQ(LogLines(line), 2);
}

TEST_F(OwnStartTest, AFolderThatCanBeHadLaterCostsNothing) {
    Start();
    ASSERT_TRUE(Model().AddCustomBackground(Media(L"red.jpg")));
    const Records before = Saved();
    const std::vector<char> picture = Content(Picture(0));
    Expect("Create Res Folder Failed(HomeService::InitCustomImage)");
    const fs::path aside = Base().wstring() + L"-aside";
    fs::rename(Base(), aside);
    std::ofstream(Base()) << "no folder";
    Start();
    EXPECT_THAT(gallery_, IsEmpty());
    EXPECT_FALSE(Model().AddCustomBackground(Media(L"blue.png")));
    EXPECT_THAT(TakeKinds(), ElementsAre(10));
    fs::remove(Base());
    fs::rename(aside, Base());
    EXPECT_TRUE(Model().AddCustomBackground(Media(L"blue.png")));
    EXPECT_THAT(GalleryNames(), ElementsAre(Name(0), Name(1)));
    ASSERT_EQ(Saved().size(), 2u);
    EXPECT_EQ(Saved()[0], before[0]);
    EXPECT_EQ(Content(Picture(0)), picture);
    ExpectAllAgree();
}

TEST_F(OwnStartTest, AFullListThatIsFoundLateIsNotWrittenOver) {
    Start();
    ASSERT_TRUE(Model().AddCustomBackground(Media(L"red.jpg")));
    std::wstring full;
    for (int i = 0; i < 32; ++i) {
        full += Piece(i, false, Picture(0), L"a");
    }
    SetGroup(full);
    Expect("Create Res Folder Failed(HomeService::InitCustomImage)");
    const fs::path aside = Base().wstring() + L"-aside";
    fs::rename(Base(), aside);
    std::ofstream(Base()) << "no folder";
    Start();
    fs::remove(Base());
    fs::rename(aside, Base());
    EXPECT_FALSE(Model().AddCustomBackground(Media(L"blue.png")));
    EXPECT_THAT(TakeKinds(), ElementsAre(10));
    EXPECT_EQ(gallery_.size(), 32u);
    EXPECT_EQ(Text(L"lumi_camera_custom_img_group"), full);
}

// No such drive: a stick that was pulled out, a share that is not connected.
TEST_F(OwnStartTest, APictureThatCannotBeLookedAtKeepsItsRecordAndItsName) {
    const std::wstring away = L"Q:\\away\\custom_background_btn_0.jpg";
    Write(L"sync_custom", 1);
    SetGroup(Piece(0, false, away, L"a"));
    Start();
    EXPECT_THAT(gallery_, IsEmpty());
    EXPECT_EQ(LogLines("custom_background_btn_0 stays without a cell: its picture cannot be looked at"
                       "(HomeService::InitCustomImage)"),
              1);
    EXPECT_TRUE(Model().AddCustomBackground(Media(L"red.jpg")));
    EXPECT_THAT(GalleryNames(), ElementsAre(Name(1)));
    ASSERT_EQ(Saved().size(), 2u);
    EXPECT_EQ(Saved()[0].thumbPath, away);
    EXPECT_TRUE(fs::exists(Picture(1)));
}

TEST_F(OwnStartTest, AVideoThatCannotBeLookedAtIsToldAndStays) {
    Start();
    ASSERT_TRUE(Model().AddCustomBackground(Media(L"red.jpg")));
    const std::wstring stored = Piece(0, true, Picture(0), L"Q:\\clip.mp4");
    SetGroup(stored);
    Start();
    EXPECT_FALSE(Model().SelectCustomBackground(Name(0)));
    EXPECT_THAT(TakeKinds(), ElementsAre(0));
    EXPECT_THAT(GalleryNames(), ElementsAre(Name(0)));
    EXPECT_EQ(Text(L"lumi_camera_custom_img_group"), stored);
    EXPECT_TRUE(fs::exists(Picture(0)));
}

TEST_F(OwnStartTest, ARecordWithoutItsPictureDisappears) {
    Start();
    for (int i = 0; i < 3; ++i) {
        Model().AddCustomBackground(Media(L"red.jpg"));
    }
    fs::remove(Picture(2));
    fs::remove(Picture(0));
    Start();
    EXPECT_THAT(GalleryNames(), ElementsAre(Name(1)));
    EXPECT_EQ(Number(L"lumi_camera_background_replacement"), 0) << "the one in use is gone";
    ASSERT_EQ(Saved().size(), 1u);
    EXPECT_EQ(Saved()[0].name, Name(1));
    Start();
    EXPECT_THAT(GalleryNames(), ElementsAre(Name(1)));
}

TEST_F(OwnStartTest, WhatAnEndedProgramLeftUnfinishedIsRemoved) {
    Start();
    Model().AddCustomBackground(Media(L"red.jpg"));
    std::ofstream(UserFolder() / (Name(1) + L".jpg.part")) << "half a picture";
    std::ofstream(UserFolder() / L"notes.part") << "somebody's";
    Start();
    EXPECT_FALSE(fs::exists(UserFolder() / (Name(1) + L".jpg.part")));
    EXPECT_TRUE(fs::exists(UserFolder() / L"notes.part"));
    ExpectAllAgree();
}

TEST_F(OwnStartTest, ADamagedListNeverCostsAFileOfTheUsers) {
    const fs::path photo = Own(L"red.jpg", L"photo.jpg");
    Write(L"sync_custom", 1);
    SetGroup(Piece(0, false, photo, photo));
    Start();
    EXPECT_THAT(GalleryNames(), ElementsAre(Name(0)));
    EXPECT_TRUE(Model().DeleteCustomBackground(Name(0)));
    EXPECT_TRUE(fs::exists(photo));
    EXPECT_THAT(Saved(), IsEmpty());
}

// The older layout: pictures in the shared folder itself.
class OlderLayoutTest : public OwnStartTest {
  protected:
    void SetUp() override {
        OwnStartTest::SetUp();
        fs::create_directories(Base() / L"S-1-5-21-somebody-else");
        clip_ = Own(L"clip.mp4", L"clip.mp4");
        for (int i = 0; i < 2; ++i) {
            fs::copy_file(Media(i == 0 ? L"red.jpg" : L"green.jpg"), Old(i));
        }
        SetGroup(Piece(0, false, Old(0), L"D:\\a.jpg") + Piece(1, true, Old(1), clip_));
        Write(L"background_selected_btnName", Name(0));
        Write(L"lumi_camera_background_replacement", 5);
        Write(L"lumi_camera_background_image_path", Old(0).wstring());
    }
    static fs::path Old(int number) { return Base() / (Name(number) + L".jpg"); }

    fs::path clip_;
};

TEST_F(OlderLayoutTest, MovesIntoTheUsersFolder) {
    Start();
    EXPECT_THAT(GalleryNames(), ElementsAre(Name(0), Name(1)));
    EXPECT_EQ(Saved()[0].thumbPath, Picture(0).wstring());
    EXPECT_EQ(Saved()[1].thumbPath, Picture(1).wstring());
    EXPECT_EQ(Content(Picture(0)), Content(Media(L"red.jpg")));
    EXPECT_TRUE(IsBitmap(Picture(1))) << "the cover is made anew";
    EXPECT_EQ(Text(L"lumi_camera_background_image_path"), Picture(0).wstring());
    EXPECT_EQ(Number(L"lumi_camera_background_replacement"), 5);
    EXPECT_EQ(Number(L"sync_custom"), 1);
    EXPECT_TRUE(fs::exists(Old(0))) << "other users may need it";
    EXPECT_TRUE(fs::is_empty(Base() / L"S-1-5-21-somebody-else"));
    EXPECT_TRUE(Model().SelectCustomBackground(Name(1)));
}

TEST_F(OlderLayoutTest, MovesOnce) {
    Start();
    EXPECT_TRUE(Model().DeleteCustomBackground(Name(0)));
    Start();
    EXPECT_THAT(GalleryNames(), ElementsAre(Name(1)));
    EXPECT_FALSE(fs::exists(Picture(0)));
}

TEST_F(OlderLayoutTest, AVideoInUseIsUsedWhereItLies) {
    Write(L"background_selected_btnName", Name(1));
    Start();
    EXPECT_EQ(Text(L"lumi_camera_background_image_path"), clip_.wstring());
}

TEST_F(OlderLayoutTest, AVideoThatIsGoneKeepsItsOldCover) {
    fs::remove(clip_);
    Start();
    EXPECT_EQ(Content(Picture(1)), Content(Media(L"green.jpg")));
    EXPECT_THAT(GalleryNames(), ElementsAre(Name(0), Name(1)));
}

TEST_F(OlderLayoutTest, ARecordWithoutAFileDisappears) {
    fs::remove(Old(0));
    Start();
    EXPECT_THAT(GalleryNames(), ElementsAre(Name(1)));
    EXPECT_EQ(Saved().size(), 1u);
}

TEST_F(OlderLayoutTest, WhatCannotBeCopiedStaysInUseWhereItLies) {
    Expect("Copy File To Resource Fail");
    Expect("copyFile error:" + std::string("custom_background_btn_0.jpg"));
    // A folder stands in the way of the first picture.
    fs::create_directories(Picture(0) / L"inside");
    Start();
    EXPECT_EQ(Saved()[0].thumbPath, Old(0).wstring());
    EXPECT_EQ(Saved()[1].thumbPath, Picture(1).wstring());
    EXPECT_EQ(gallery_.size(), 2u);
    EXPECT_TRUE(fs::exists(Old(0)));
}

TEST_F(OlderLayoutTest, AVideoWithoutACoverKeepsItsOldOne) {
    std::ofstream(clip_) << "no video";
    Start();
    EXPECT_EQ(Content(Picture(1)), Content(Media(L"green.jpg")));
    EXPECT_EQ(Saved()[1].thumbPath, Picture(1).wstring());
}

TEST_F(OlderLayoutTest, AVideoWithoutAnyCoverGetsWhatStandsForOne) {
    std::ofstream(clip_) << "no video";
    fs::remove(Old(1));
    Start();
    EXPECT_THAT(GalleryNames(), ElementsAre(Name(0), Name(1)));
    EXPECT_TRUE(IsJpeg(Picture(1)));
    EXPECT_EQ(Saved()[1].thumbPath, Picture(1).wstring());
}

// The list names a cover that is gone; one with the video's name lies in the shared folder all the same.
TEST_F(OlderLayoutTest, ACoverThatIsCopiedIsWorthMoreThanWhatStandsForOne) {
    std::ofstream(clip_) << "no video";
    SetGroup(Piece(1, true, OwnFolder() / L"gone.jpg", clip_));
    Start();
    EXPECT_EQ(Content(Picture(1)), Content(Media(L"green.jpg")));
    EXPECT_EQ(Saved()[0].thumbPath, Picture(1).wstring());
}

TEST_F(OlderLayoutTest, ACoverThatLiesElsewhereStaysInUse) {
    std::ofstream(clip_) << "no video";
    fs::remove(Old(1));
    const fs::path cover = Own(L"green.jpg", L"cover.jpg");
    SetGroup(Piece(1, true, cover, clip_));
    Start();
    ASSERT_EQ(Saved().size(), 1u);
    EXPECT_EQ(Saved()[0].thumbPath, cover.wstring());
    EXPECT_FALSE(fs::exists(Picture(1)));
}

TEST_F(OlderLayoutTest, WhatItDoesNotUnderstandIsKept) {
    const std::wstring rest = L"four[(&,f!=)]1[(&,f!=)]0[(&,f!=)]x[(&;i!-)]";
    SetGroup(rest + Piece(0, false, Old(0), L"D:\\a.jpg"));
    Start();
    EXPECT_EQ(Text(L"lumi_camera_custom_img_group"), Piece(0, false, Picture(0), L"D:\\a.jpg") + rest);
}

TEST_F(OlderLayoutTest, NewerPicturesAreNotOverwritten) {
    Start();
    EXPECT_TRUE(Model().DeleteCustomBackground(Name(0)));
    EXPECT_TRUE(Model().AddCustomBackground(Media(L"blue.png")));
    Write(L"sync_custom", 0);
    Start();
    EXPECT_TRUE(IsAbout(Decode(Picture(0)).At(9, 9), 0x2040C0));
}

}  // namespace
