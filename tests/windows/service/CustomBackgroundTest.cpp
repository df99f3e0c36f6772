// The user's own backgrounds, as far as no picture is read.
#include <fstream>

#include "service/CustomImageGroup.h"
#include "service/KindNotifier.h"
#include "tests/windows/service/ServiceTest.h"

namespace {

using GlobalUtils::MessageBoxKind;
using Records = std::vector<CustomImageRecord>;

void MakeFile(const std::filesystem::path& path) {
    std::ofstream(path) << "content";
}

class CustomBackgroundTest : public ServiceTest {
  protected:
    void SetUp() override {
        ServiceTest::SetUp();
        model_ = MakeModel();
        std::filesystem::remove_all(Pictures());
        std::filesystem::create_directories(Pictures());
        model_->SetRemoveCustomItem([this](std::int32_t index, const std::wstring& name) {
            removed_.emplace_back(index, name);
            return galleryRemoves_;
        });
        hubId_ = Hub().Subscribe(0, [this](MessageBoxKind& kind) { kinds_.push_back(kind); });
    }
    void TearDown() override {
        Hub().Unsubscribe(0, hubId_);
        model_.reset();
        std::filesystem::remove_all(Pictures());
        ServiceTest::TearDown();
    }

    static KindNotifier<MessageBoxKind>& Hub() { return KindNotifier<MessageBoxKind>::GetInstance(); }
    static std::filesystem::path Pictures() { return Folder() / L"pictures"; }
    static std::wstring Name(int number) { return L"custom_background_btn_" + std::to_wstring(number); }
    static std::filesystem::path Picture(int number) { return Pictures() / (Name(number) + L".jpg"); }
    static std::filesystem::path Video(int number) { return Pictures() / (std::to_wstring(number) + L".mp4"); }

    const Records& Items() { return HomeServiceTestAccess::CustomItems(*model_); }
    const std::map<std::wstring, std::wstring>& ByName() { return HomeServiceTestAccess::CustomByName(*model_); }

    // As the gallery has it: the items stand before the add button, after 14 others.
    void AddImage(int number) { Add(number, false, L"D:\\photo.png"); }
    void AddVideo(int number) {
        MakeFile(Video(number));
        Add(number, true, Video(number));
    }
    void SaveGroup() { Write(L"lumi_camera_custom_img_group", CustomImageGroup::Serialise(Items())); }
    static Records SavedGroup() {
        return CustomImageGroup::Parse(std::get<std::wstring>(*Read(L"lumi_camera_custom_img_group")));
    }
    std::vector<std::pair<std::wstring, int>> NamesAndIndexes() {
        std::vector<std::pair<std::wstring, int>> result;
        for (const CustomImageRecord& record : Items()) {
            result.emplace_back(record.name, record.index);
        }
        return result;
    }

    HomeServiceTestAccess::Model model_;
    std::vector<std::pair<int, std::wstring>> removed_;
    bool galleryRemoves_ = true;
    std::vector<MessageBoxKind> kinds_;

  private:
    void Add(int number, bool isVideo, const std::wstring& source) {
        MakeFile(Picture(number));
        auto list = model_->Backgrounds().List();
        list.Append({Name(number), isVideo, 14 + static_cast<int>(Items().size()), Picture(number), source});
        list.SetPaths(Name(number), source);
        model_->Backgrounds().SetList(list);
    }

    std::int64_t hubId_ = 0;
};

TEST_F(CustomBackgroundTest, SelectingAnImageShowsItsPicture) {
    AddImage(0);
    AddImage(1);
    EXPECT_TRUE(model_->SelectCustomBackground(Name(1)));
    EXPECT_EQ(Read(L"lumi_camera_background_replacement"), Value(5));
    EXPECT_EQ(Read(L"lumi_camera_background_image_path"), Value(Picture(1).wstring()));
    EXPECT_EQ(Read(L"background_selected_btnName"), Value(Name(1)));
    EXPECT_EQ(std::get<2>(model_->GetFeatureStatus()).btnName, Name(1));
}

TEST_F(CustomBackgroundTest, SelectingAVideoShowsItWhereItLies) {
    AddVideo(0);
    EXPECT_TRUE(model_->SelectCustomBackground(Name(0)));
    EXPECT_EQ(Read(L"lumi_camera_background_replacement"), Value(5));
    EXPECT_EQ(Read(L"lumi_camera_background_image_path"), Value(Video(0).wstring()));
    EXPECT_EQ(Read(L"background_selected_btnName"), Value(Name(0)));
    EXPECT_TRUE(kinds_.empty());
}

TEST_F(CustomBackgroundTest, AVideoThatIsGoneIsDeletedAndTold) {
    AddImage(0);
    AddVideo(1);
    AddImage(2);
    std::filesystem::remove(Video(1));
    Write(L"background_selected_btnName", Name(0));
    Write(L"lumi_camera_background_replacement", 5);
    // The name may be the record's own.
    EXPECT_FALSE(model_->SelectCustomBackground(Items()[1].name));
    EXPECT_EQ(kinds_, std::vector{MessageBoxKind(1)});
    EXPECT_EQ(removed_, (std::vector<std::pair<int, std::wstring>>{{15, Name(1)}}));
    EXPECT_EQ(NamesAndIndexes(), (std::vector<std::pair<std::wstring, int>>{{Name(0), 14}, {Name(2), 15}}));
    EXPECT_EQ(SavedGroup(), Items());
    EXPECT_EQ(Read(L"background_selected_btnName"), Value(Name(0)));
    EXPECT_EQ(Read(L"lumi_camera_background_replacement"), Value(5));
}

TEST_F(CustomBackgroundTest, SelectingAnItemThatIsNotThereChangesNothing) {
    AddImage(0);
    const Values before = AllValues();
    EXPECT_FALSE(model_->SelectCustomBackground(Name(7)));
    EXPECT_FALSE(model_->SelectCustomBackground(L""));
    EXPECT_EQ(AllValues(), before);
    EXPECT_TRUE(kinds_.empty());
}

TEST_F(CustomBackgroundTest, DeletingTakesPictureRecordAndCell) {
    AddImage(0);
    AddVideo(1);
    AddImage(2);
    AddImage(3);
    EXPECT_TRUE(model_->DeleteCustomBackground(Name(1)));
    EXPECT_FALSE(std::filesystem::exists(Picture(1)));
    EXPECT_TRUE(std::filesystem::exists(Video(1)));
    EXPECT_TRUE(std::filesystem::exists(Picture(2)));
    EXPECT_FALSE(ByName().contains(Name(1)));
    EXPECT_TRUE(ByName().contains(Name(1) + L"_video"));
    EXPECT_EQ(NamesAndIndexes(),
              (std::vector<std::pair<std::wstring, int>>{{Name(0), 14}, {Name(2), 15}, {Name(3), 16}}));
    EXPECT_EQ(SavedGroup(), Items());
}

TEST_F(CustomBackgroundTest, OneDeletionAfterTheOtherHitsTheRightCells) {
    for (int number = 0; number < 5; ++number) {
        AddImage(number);
    }
    for (const int number : {0, 4, 2, 1, 3}) {
        EXPECT_TRUE(model_->DeleteCustomBackground(Name(number)));
    }
    EXPECT_EQ(removed_, (std::vector<std::pair<int, std::wstring>>{
                            {14, Name(0)}, {17, Name(4)}, {15, Name(2)}, {14, Name(1)}, {14, Name(3)}}));
    EXPECT_EQ(Read(L"lumi_camera_custom_img_group"), Value(std::wstring()));
}

TEST_F(CustomBackgroundTest, WhereTheGalleryKeepsTheCellTheOthersKeepTheirIndex) {
    AddImage(0);
    AddImage(1);
    galleryRemoves_ = false;
    EXPECT_TRUE(model_->DeleteCustomBackground(Name(0)));
    EXPECT_EQ(NamesAndIndexes(), (std::vector<std::pair<std::wstring, int>>{{Name(1), 15}}));
}

TEST_F(CustomBackgroundTest, DeletingTheSelectedItemFallsBackToNoBackground) {
    AddImage(0);
    ASSERT_TRUE(model_->SelectCustomBackground(Name(0)));
    EXPECT_TRUE(model_->DeleteCustomBackground(Name(0)));
    EXPECT_EQ(Read(L"lumi_camera_background_replacement"), Value(0));
    EXPECT_EQ(std::get<2>(model_->GetFeatureStatus()).btnName, L"none_background_btn");
}

TEST_F(CustomBackgroundTest, DeletingAnotherItemKeepsTheSelection) {
    AddImage(0);
    AddImage(1);
    ASSERT_TRUE(model_->SelectCustomBackground(Name(0)));
    EXPECT_TRUE(model_->DeleteCustomBackground(Name(1)));
    EXPECT_EQ(Read(L"lumi_camera_background_replacement"), Value(5));
    EXPECT_EQ(Read(L"background_selected_btnName"), Value(Name(0)));
}

TEST_F(CustomBackgroundTest, AStaleItemWasNeverInTheGallery) {
    AddImage(0);
    AddImage(1);
    service::OwnBackgroundList list;
    list.Assign(Items());
    list.SetIndex(Name(1), 20);
    list.SetPaths(Name(1), {});
    model_->Backgrounds().SetList(list);
    SaveGroup();
    EXPECT_TRUE(model_->DeleteCustomBackground(Name(0)));
    EXPECT_TRUE(removed_.empty());
    EXPECT_EQ(NamesAndIndexes(), (std::vector<std::pair<std::wstring, int>>{{Name(1), 20}}));
    EXPECT_EQ(SavedGroup(), Items());
}

TEST_F(CustomBackgroundTest, DeletingAnItemThatIsNotThereChangesNothing) {
    AddImage(0);
    const Values before = AllValues();
    EXPECT_FALSE(model_->DeleteCustomBackground(Name(1)));
    EXPECT_EQ(AllValues(), before);
    EXPECT_TRUE(removed_.empty());
    EXPECT_EQ(Items().size(), 1u);
}

TEST_F(CustomBackgroundTest, APictureThatCannotBeDeletedStopsNothing) {
    AddImage(0);
    std::filesystem::remove(Picture(0));
    EXPECT_TRUE(model_->DeleteCustomBackground(Name(0)));
    EXPECT_TRUE(Items().empty());
}

TEST_F(CustomBackgroundTest, ThirtyTwoAreFull) {
    for (int number = 0; number < 31; ++number) {
        AddImage(number);
    }
    EXPECT_FALSE(model_->IsCustomFull());
    AddImage(31);
    EXPECT_TRUE(model_->IsCustomFull());
}

TEST_F(CustomBackgroundTest, CopyingOverwrites) {
    MakeFile(Picture(0));
    std::ofstream(Picture(1)) << "other";
    EXPECT_TRUE(HomeService::CopyFileToDest(Picture(0), Picture(1)));
    std::string content;
    std::ifstream(Picture(1)) >> content;
    EXPECT_EQ(content, "content");
}

TEST_F(CustomBackgroundTest, ACopyThatFailsIsLoggedWithItsError) {
    Expect("Copy File To Resource Fail,ErrorCode:2(HomeService::CopyFileToDest)");
    EXPECT_FALSE(HomeService::CopyFileToDest(Picture(0), Picture(1)));
    EXPECT_EQ(LogLines("[L4]"), 1);
    EXPECT_EQ(LogLines("Copy File To Resource Fail,ErrorCode:2(HomeService::CopyFileToDest)"), 1);
}

TEST_F(CustomBackgroundTest, TheUserHasAnIdentifier) {
    const std::wstring sid = HomeService::GetUserSidString();
    EXPECT_EQ(sid.substr(0, 6), L"S-1-5-");
    EXPECT_EQ(HomeService::GetUserSidString(), sid);
}

}  // namespace
