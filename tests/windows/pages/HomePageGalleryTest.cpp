// The user's own items in the gallery: how they are built, found, hidden and removed, and how the gallery grows.
#include "DuiLib/OptionUI.h"
#include "pages/ContainerUIEx.h"
#include "tests/windows/pages/PageTests.h"
#include "tests/windows/support/HangingDecoder.h"
#include "tests/windows/support/Screen.h"

namespace {

using DuiLib::CContainerUI;
using DuiLib::LengthDip;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr wchar_t kPicture[] = L"drawable/LumiCamera/thumb_add.png";

class HomePageGalleryTest : public HomePageTest {
  protected:
    static std::wstring Name(int number) { return L"custom_background_btn_" + std::to_wstring(number); }
    int Add(int number, bool isVideo = false) { return Page().AddCustomItem(Name(number), kPicture, isVideo); }
    CContainerUI& Group() { return Control<CContainerUI>(L"background_replace_btn_group"); }
    // Least height of the group, and height of the section.
    std::pair<int, int> Heights() { return {Group().GetMinHeight(), Control(L"virtual_background").GetHeight().value}; }
    void ExpectSize(const std::wstring& name, int width, int height) {
        const DuiLib::CControlUI& control = Control(name);
        EXPECT_EQ(control.GetWidth(), (LengthDip{LengthDip::Kind::kFixed, width}));
        EXPECT_EQ(control.GetHeight(), (LengthDip{LengthDip::Kind::kFixed, height}));
    }
    bool Has(const std::wstring& name) { return Manager().FindControl(name) != nullptr; }
};

TEST_F(HomePageGalleryTest, TheLayoutHasTheBuiltInEntriesWithTheAddButtonLast) {
    EXPECT_EQ(Group().GetCount(), 15);
    EXPECT_NE(Group().GetItemAt(14)->FindControlByName(L"custom_background_btn"), nullptr);
    EXPECT_EQ(Heights(), std::pair(160, 220));
}

TEST_F(HomePageGalleryTest, AnItemStandsBeforeTheAddButton) {
    EXPECT_EQ(Add(0), 14);
    EXPECT_EQ(Add(1), 15);
    EXPECT_EQ(Group().GetCount(), 17);
    EXPECT_NE(Group().GetItemAt(14)->FindControlByName(Name(0)), nullptr);
    EXPECT_NE(Group().GetItemAt(15)->FindControlByName(Name(1)), nullptr);
    EXPECT_NE(Group().GetItemAt(16)->FindControlByName(L"custom_background_btn"), nullptr);
}

TEST_F(HomePageGalleryTest, AnItemIsMadeOfTheseParts) {
    Add(3);
    const DuiLib::CControlUI& cell = *Control(Name(3) + L"_item").GetParent();
    EXPECT_EQ(cell.GetName(), L"");
    EXPECT_EQ(cell.GetWidth().value, 60);
    EXPECT_EQ(cell.GetHeight().value, 40);
    EXPECT_EQ(cell.GetPadding(), (DuiLib::Rect{0, 10, 0, 0}));
    EXPECT_EQ(cell.GetParent(), &Group());

    ExpectSize(Name(3) + L"_item", 52, 32);
    EXPECT_NE(dynamic_cast<CContainerUIEx*>(&Control(Name(3) + L"_item")), nullptr);
    ExpectSize(Name(3) + L"_bk", 52, 32);
    EXPECT_EQ(Control(Name(3) + L"_bk").GetBkImage(), L"file='drawable/LumiCamera/thumb_add.png' reverse='true'");
    ExpectSize(Name(3), 52, 32);
    const auto& option = Control<DuiLib::COptionUI>(Name(3));
    EXPECT_EQ(option.GetGroup(), L"background_replace_group");
    EXPECT_EQ(option.GetTextColor(), 0x053EC600U);
    EXPECT_EQ(option.GetText(), L"");
    EXPECT_EQ(option.GetNormalImage(), L"file='drawable/LumiCamera/img_thumbnail_none@2x.png'");
    EXPECT_EQ(option.GetAccessibleInfo().name, L"Custom background 4");
    ExpectSize(Name(3) + L"_del", 12, 12);
    const auto& remove = Control<DuiLib::CButtonUI>(Name(3) + L"_del");
    EXPECT_FALSE(remove.IsVisible());
    EXPECT_EQ(remove.GetNormalImage(), L"file='drawable/LumiCamera/ic_cancel_normal.png'");
    EXPECT_EQ(remove.GetHotImage(), L"file='drawable/LumiCamera/ic_cancel_hover.png'");
    EXPECT_EQ(remove.GetAccessibleInfo().name, L"Delete custom background 4");
    EXPECT_FALSE(Has(Name(3) + L"_video"));
}

TEST_F(HomePageGalleryTest, TheDeleteButtonLooksAsItIsHeld) {
    Add(0);
    auto& button = Control<DuiLib::CButtonUI>(Name(0) + L"_del");
    button.SetVisible(true);
    ASSERT_TRUE(Input::Activate(Host().GetHWND()));
    Manager().UpdateLayout();
    button.GetParent()->GetParent()->GetParent()->EnsureVisible(button);
    Manager().UpdateLayout();
    const auto look = [&] {
        const Picture picture = PaintedBy(Manager());
        std::vector<DWORD> pixels;
        const DuiLib::Rect& place = button.GetPos();
        for (int y = place.top; y < place.bottom; ++y) {
            for (int x = place.left; x < place.right; ++x)
                pixels.push_back(picture.At({x, y}));
        }
        return pixels;
    };
    // Each look with the picture of its own name, drawn as the normal one.
    const auto lookOf = [&](const wchar_t* file) {
        const std::wstring before = button.GetNormalImage();
        button.SetNormalImage(std::wstring(L"file='drawable/LumiCamera/") + file + L"'");
        const std::vector<DWORD> pixels = look();
        button.SetNormalImage(before);
        return pixels;
    };
    const std::vector<DWORD> normal = lookOf(L"ic_cancel_normal.png");
    const std::vector<DWORD> hover = lookOf(L"ic_cancel_hover.png");
    const std::vector<DWORD> pushed = lookOf(L"ic_cancel_pushed.png");
    ASSERT_NE(normal, hover);
    ASSERT_NE(hover, pushed);
    EXPECT_EQ(look(), normal);
    Input::MoveTo(button);
    EXPECT_EQ(look(), hover);
    Input::ButtonDown();
    EXPECT_EQ(look(), pushed);
    Input::Park();
    Input::ButtonUp();
}

TEST_F(HomePageGalleryTest, AVideoHasABadge) {
    Add(0, true);
    ExpectSize(Name(0) + L"_video", 12, 12);
    EXPECT_EQ(Control(Name(0) + L"_video").GetBkImage(), L"file='drawable/LumiCamera/video_icon.png' reverse='true'");
    EXPECT_EQ(Control<DuiLib::COptionUI>(Name(0)).GetAccessibleInfo().name, L"Custom background 1 (video)");
    Manager().UpdateLayout();
    const DuiLib::Rect& badge = Control(Name(0) + L"_video").GetPos();
    const DuiLib::Rect& item = Control(Name(0) + L"_item").GetPos();
    EXPECT_EQ(badge.Width(), 12);
    EXPECT_EQ(badge.Height(), 12);
    EXPECT_EQ(badge.Intersect(item), badge);
    // A click on it is one on the entry.
    const POINT middle = {(badge.left + badge.right) / 2, (badge.top + badge.bottom) / 2};
    EXPECT_EQ(Manager().FindControl(middle), &Control(Name(0)));
}

TEST_F(HomePageGalleryTest, AnItemsPartsLieWithinIt) {
    Add(0, true);
    Page().AddCustomItem(Name(1), kPicture, false);
    Control(Name(0) + L"_del").SetVisible(true);
    Manager().UpdateLayout();
    const DuiLib::Rect& item = Control(Name(0) + L"_item").GetPos();
    EXPECT_EQ(item.Width(), 52);
    EXPECT_EQ(item.Height(), 32);
    EXPECT_EQ(Control(Name(0)).GetPos(), item);
    EXPECT_EQ(Control(Name(0) + L"_bk").GetPos(), item);
    const DuiLib::Rect& remove = Control(Name(0) + L"_del").GetPos();
    EXPECT_EQ(remove.Intersect(item), remove);
    // The delete button can be hit, though the option fills the item.
    EXPECT_EQ(Manager().FindControl(POINT{(remove.left + remove.right) / 2, (remove.top + remove.bottom) / 2}),
              &Control(Name(0) + L"_del"));
    // Where a built-in entry would stand.
    EXPECT_EQ(item.top, Control(L"img_ten_background_btn").GetPos().top);
    EXPECT_EQ(item.left, Control(L"img_nine_background_btn").GetPos().left);
}

TEST_F(HomePageGalleryTest, TheGalleryGrowsWhenARowBeginsOrCloses) {
    const std::vector<std::pair<int, int>> heights = {
        {208, 268}, {208, 268}, {208, 268}, {208, 268}, {208, 268},  // 16 to 20 entries
        {256, 316}, {256, 316}, {256, 316}, {256, 316}, {256, 316}, {304, 364}};
    int number = 0;
    for (const auto& expected : heights) {
        Add(number++);
        EXPECT_EQ(Heights(), expected) << number;
    }
    Manager().UpdateLayout();
    EXPECT_EQ(Control(L"virtual_background").GetPos().Height(), 364);
}

TEST_F(HomePageGalleryTest, WithinARowTheHeightIsLeftAlone) {
    Add(0);
    Group().SetMinHeight(999);
    Add(1);
    Add(2);
    EXPECT_EQ(Heights(), std::pair(999, 268));
    Add(3);
    EXPECT_EQ(Heights().first, 999);
    Add(4);
    EXPECT_EQ(Heights(), std::pair(208, 268));
}

TEST_F(HomePageGalleryTest, ItShrinksWhenARowIsGone) {
    for (int number = 0; number < 6; ++number)
        Add(number);
    EXPECT_EQ(Heights(), std::pair(256, 316));
    EXPECT_TRUE(Page().DelBackgroudItem(14, Name(0)));  // 20 entries
    EXPECT_EQ(Heights(), std::pair(208, 268));
    for (int left = 19; left > 15; --left) {
        EXPECT_TRUE(Page().DelBackgroudItem(14, L""));
        EXPECT_EQ(Heights(), std::pair(208, 268)) << left;
    }
    EXPECT_TRUE(Page().DelBackgroudItem(14, L""));
    EXPECT_EQ(Heights(), std::pair(160, 220));
    EXPECT_EQ(Group().GetCount(), 15);
    EXPECT_NE(Group().GetItemAt(14)->FindControlByName(L"custom_background_btn"), nullptr);
}

TEST_F(HomePageGalleryTest, ARemovedItemIsGoneWithItsParts) {
    Add(0);
    Add(1);
    EXPECT_TRUE(Page().DelBackgroudItem(14, L"C:\\picture.jpg"));
    for (const wchar_t* part : {L"", L"_item", L"_bk", L"_del"}) {
        EXPECT_FALSE(Has(Name(0) + part));
        EXPECT_TRUE(Has(Name(1) + part));
    }
    EXPECT_THAT(LogOf("HomePage::DelBackgroudItem"), IsEmpty());
}

TEST_F(HomePageGalleryTest, ARemovedItemsPictureIsForgotten) {
    Add(0);
    const HBITMAP picture = CreateBitmap(4, 4, 1, 32, nullptr);
    ASSERT_TRUE(Manager().AddImage(L"C:\\picture.jpg", picture, 4, 4, false, false));
    Page().DelBackgroudItem(14, L"C:\\picture.jpg");
    EXPECT_FALSE(Manager().HasImage(L"C:\\picture.jpg"));
}

// The model names the item, not its file.
TEST_F(HomePageGalleryTest, ARemovedItemsThumbnailIsForgotten) {
    const std::wstring path = OwnFolder() + L"thumbnail.png";
    ASSERT_TRUE(CopyFileW((ProgramFolder() + L"res\\" + kPicture).c_str(), path.c_str(), FALSE));
    Page().AddCustomItem(Name(0), path, false);
    ASSERT_TRUE(Manager().HasImage(path));
    EXPECT_TRUE(Page().DelBackgroudItem(14, Name(0)));
    EXPECT_FALSE(Manager().HasImage(path));
    // Nor does it come back when the file has been read meanwhile.
    Page().AddCustomItem(Name(1), kPicture, false);
    EXPECT_TRUE(Input::PumpUntil([&] { return DeleteFileW(path.c_str()) != FALSE; }));
    EXPECT_FALSE(Manager().HasImage(path));
}

TEST_F(HomePageGalleryTest, WithoutAnIndexNothingIsRemoved) {
    const std::string line =
        "[L4] del CustomBackground failed index:-1,resUrl:C:\\picture.jpg(HomePage::DelBackgroudItem)";
    Expect(line);
    Add(0);
    EXPECT_FALSE(Page().DelBackgroudItem(-1, L"C:\\picture.jpg"));
    EXPECT_EQ(Group().GetCount(), 16);
    EXPECT_EQ(Heights(), std::pair(208, 268));
    EXPECT_THAT(LogOf("HomePage::DelBackgroudItem"), ElementsAre(line));
}

TEST_F(HomePageGalleryTest, BeyondTheEndNothingIsRemoved) {
    for (const int index : {15, 99, -2})
        EXPECT_FALSE(Page().DelBackgroudItem(index, L""));
    EXPECT_EQ(Group().GetCount(), 15);
    EXPECT_EQ(Heights(), std::pair(160, 220));
}

TEST_F(HomePageGalleryTest, WithoutTheGroupThereIsNoGallery) {
    RemoveControl(L"background_replace_btn_group");
    const std::string line = "[L4] del CustomBackground failed index:3,resUrl:picture(HomePage::DelBackgroudItem)";
    Expect(line);
    EXPECT_EQ(Add(0), -1);
    EXPECT_FALSE(Page().DelBackgroudItem(3, L"picture"));
    EXPECT_THAT(LogOf("HomePage::DelBackgroudItem"), ElementsAre(line));
}

// Names that the page answers and whose controls the layout lacks, or has as something else.
TEST_F(HomePageGalleryTest, WithoutItsOptionAClickIsLogged) {
    const std::string line = "[L4] Get option null!(HomePage::ClickChangeBackground)";
    Expect(line);
    const auto click = [this](const std::wstring& name) {
        DuiLib::CButtonUI stranger;
        stranger.SetName(name);
        stranger.SetVirtualWnd(L"HomePage");
        Manager().SendNotify(&stranger, L"click");
    };
    RemoveControl(L"custom_background_btn");
    click(L"custom_background_btn");
    EXPECT_THAT(LogOf("HomePage::ClickChangeBackground"), ElementsAre(line));
    Add(0);
    RemoveControl(Name(0));
    click(Name(0));
    EXPECT_THAT(LogOf("HomePage::ClickChangeBackground"), ElementsAre(line, line));
    click(L"none_background_btn");
    EXPECT_THAT(LogOf("HomePage::ClickChangeBackground"), ElementsAre(line, line));
}

TEST_F(HomePageGalleryTest, AnItemMayBeRemovedByItsOwnClick) {
    Add(0);
    auto& model = *HomeService::GetInstance();
    HomeServiceTestAccess::AddCustomItem({Name(0), 0, 14, L"C:\\nowhere.jpg", L"C:\\nowhere.png"});
    Control(Name(0) + L"_del").SetVisible(true);
    Manager().UpdateLayout();
    Press(Name(0) + L"_del");
    ASSERT_THAT(Host().deletions, ElementsAre(Name(0)));
    EXPECT_TRUE(model.DeleteCustomBackground(Host().deletions[0]));
    EXPECT_FALSE(Has(Name(0)));
    EXPECT_EQ(Group().GetCount(), 15);
}

TEST_F(HomePageGalleryTest, TheDeleteKeyAsksForTheItemThatHasTheFocus) {
    Add(0);
    Add(1);
    Manager().UpdateLayout();
    ASSERT_TRUE(Input::Activate(Host().GetHWND()));
    Manager().SetFocus(&Control(Name(1)));
    Input::Key(VK_DELETE);
    EXPECT_THAT(Host().deletions, ElementsAre(Name(1)));
    Manager().SetFocus(&Control(L"img_one_background_btn"));
    Input::Key(VK_DELETE);
    EXPECT_EQ(Host().deletions.size(), 1U);
}

TEST_F(HomePageGalleryTest, OnlyADeleteButtonOfAnItemAsks) {
    for (const wchar_t* name : {L"some_del", L"_del", L"custom_background_btn_1_item", L"custom_background_del"}) {
        DuiLib::CButtonUI stranger;
        stranger.SetName(name);
        stranger.SetVirtualWnd(L"HomePage");
        Manager().SendNotify(&stranger, L"click");
    }
    EXPECT_THAT(Host().deletions, IsEmpty());
}

// --- pictures

TEST_F(HomePageGalleryTest, APictureComesWhenItHasBeenRead) {
    const std::wstring path = OwnFolder() + L"own.png";
    const std::wstring scene = ProgramFolder() + L"res\\drawable\\LumiCamera\\img_notora_camera.png";
    ASSERT_TRUE(CopyFileW(scene.c_str(), path.c_str(), FALSE)) << GetLastError();
    Page().AddCustomItem(Name(0), path, false);
    Manager().UpdateLayout();
    const auto colors = [this] { return PaintedBy(Manager()).ColorsIn(Control(Name(0) + L"_bk").GetPos()); };
    const int plain = colors();
    EXPECT_TRUE(Input::PumpUntil([&] { return colors() > plain + 20; }));
    EXPECT_TRUE(DeleteFileW(path.c_str())) << "the file is still open";
    EXPECT_TRUE(Page().DelBackgroudItem(14, path));
    EXPECT_FALSE(Manager().HasImage(path));
}

TEST_F(HomePageGalleryTest, EachPictureComesTogetherWithOthersAndAfterThem) {
    const std::wstring scene = ProgramFolder() + L"res\\drawable\\LumiCamera\\img_notora_camera.png";
    const auto add = [&](int number) {
        const std::wstring path = OwnFolder() + std::to_wstring(number) + L".png";
        ASSERT_TRUE(CopyFileW(scene.c_str(), path.c_str(), FALSE)) << GetLastError();
        Page().AddCustomItem(Name(number), path, false);
    };
    const auto comes = [&](int number) {
        Manager().UpdateLayout();
        return Input::PumpUntil(
            [&] { return PaintedBy(Manager()).ColorsIn(Control(Name(number) + L"_bk").GetPos()) > 50; });
    };
    add(0);
    add(1);
    EXPECT_TRUE(comes(0));
    EXPECT_TRUE(comes(1));
    add(2);
    EXPECT_TRUE(comes(2));
}

TEST_F(HomePageGalleryTest, APictureThatComesWhenItsPageIsGoneIsDropped) {
    const std::wstring path = OwnFolder() + L"own.png";
    ASSERT_TRUE(CopyFileW((ProgramFolder() + L"res\\" + kPicture).c_str(), path.c_str(), FALSE));
    {
        const HangingDecoder decoder;
        Page().AddCustomItem(Name(0), path, false);
        EXPECT_TRUE(Input::PumpUntil([] { return HangingDecoder::Inside() == 1; }));
        HangingDecoder::LetGo();
        DestroyPage();
    }
    Manager().RemoveImage(path);
    Input::Pump();
    EXPECT_FALSE(Manager().HasImage(path));
}

// --- delete buttons while the pointer moves

TEST_F(HomePageGalleryTest, TheDeleteButtonComesWithThePointer) {
    Add(0);
    Add(1);
    Notify(Name(0) + L"_item", L"mouseenter");
    EXPECT_TRUE(Control(Name(0) + L"_del").IsVisible());
    EXPECT_FALSE(Control(Name(1) + L"_del").IsVisible());
    // Leaving the item does not hide it; going to another control does.
    Notify(Name(0) + L"_item", L"mouseleave");
    EXPECT_TRUE(Control(Name(0) + L"_del").IsVisible());
    Notify(Name(1) + L"_bk", L"mouseenter");
    EXPECT_FALSE(Control(Name(1) + L"_del").IsVisible());
}

TEST_F(HomePageGalleryTest, TheDeleteButtonGoesWhenAnotherItemIsEntered) {
    Add(0);
    Add(1);
    const auto show = [this] { Control(Name(0) + L"_del").SetVisible(true); };
    const auto visible = [this] { return Control(Name(0) + L"_del").IsVisible(); };
    show();
    for (const wchar_t* part : {L"", L"_item", L"_bk", L"_del"}) {
        EXPECT_FALSE(Page().HideDelButton(Name(0), Name(0) + part));
        EXPECT_FALSE(Page().HideDelButton(Name(0) + part, Name(0)));
    }
    EXPECT_TRUE(visible());
    for (const std::wstring& other : {Name(1), std::wstring(L"none_background_btn"), std::wstring(),
                                      std::wstring(L"custom_background_btn"), Name(0) + L"0"}) {
        show();
        EXPECT_TRUE(Page().HideDelButton(Name(0) + L"_item", other));
        EXPECT_FALSE(visible());
    }
}

TEST_F(HomePageGalleryTest, TheDeleteButtonComesWithTheKeyboard) {
    Add(0);
    Add(1);
    const auto canDelete = [this](int number) { return Control(Name(number) + L"_del").IsVisible(); };
    ASSERT_TRUE(Input::Activate(Host().GetHWND()));
    Input::Park();
    Manager().SetFocus(&Control(Name(0)), true);
    EXPECT_TRUE(canDelete(0));
    EXPECT_FALSE(canDelete(1));
    Manager().SetFocus(&Control(Name(0) + L"_del"), true);
    EXPECT_TRUE(canDelete(0)) << "it has the focus itself";
    Manager().SetFocus(&Control(Name(1)), true);
    EXPECT_FALSE(canDelete(0));
    EXPECT_TRUE(canDelete(1));
    Manager().SetFocus(nullptr);
    EXPECT_FALSE(canDelete(1));
    // Of no other control.
    Manager().SetFocus(&Control(L"none_background_btn"), true);
    Manager().SetFocus(nullptr);
}

TEST_F(HomePageGalleryTest, TheDeleteButtonStaysWithThePointerWhenTheKeyboardGoes) {
    Add(0);
    Manager().UpdateLayout();
    DuiLib::CControlUI& item = Control(Name(0) + L"_item");
    item.GetParent()->GetParent()->EnsureVisible(item);
    ASSERT_TRUE(Input::Activate(Host().GetHWND()));
    Manager().SetFocus(&Control(Name(0)), true);
    Input::MoveTo(item);
    ASSERT_TRUE(Input::PumpUntil([&] { return Manager().GetHot() == &Control(Name(0)); }));
    Manager().SetFocus(nullptr);
    EXPECT_TRUE(Control(Name(0) + L"_del").IsVisible());
}

TEST_F(HomePageGalleryTest, WithoutItsRingTheFocusShowsNoDeleteButton) {
    Add(0);
    ASSERT_TRUE(Input::Activate(Host().GetHWND()));
    Input::Park();
    ASSERT_FALSE(Manager().IsFocusRingShown());
    Manager().SetFocus(&Control(Name(0)), false);
    EXPECT_FALSE(Control(Name(0) + L"_del").IsVisible());
}

TEST_F(HomePageGalleryTest, ScrolledAwayFromThePointerTheDeleteButtonGoes) {
    Add(0);
    Manager().UpdateLayout();
    DuiLib::CControlUI& item = Control(Name(0) + L"_item");
    item.GetParent()->GetParent()->EnsureVisible(item);
    ASSERT_TRUE(Input::Activate(Host().GetHWND()));
    Input::MoveTo(item);
    Notify(Name(0) + L"_item", L"mouseenter");
    Notify(L"effects", L"scroll");
    EXPECT_TRUE(Control(Name(0) + L"_del").IsVisible()) << "the pointer is still on its item";
    Input::Park();
    Notify(L"effects", L"scroll");
    EXPECT_FALSE(Control(Name(0) + L"_del").IsVisible());
}

TEST_F(HomePageGalleryTest, WithoutSuchAButtonNothingIsHidden) {
    Add(0);
    EXPECT_FALSE(Page().HideDelButton(Name(7), Name(0)));
    EXPECT_FALSE(Page().HideDelButton(L"", Name(0)));
    EXPECT_FALSE(Page().HideDelButton(L"none_background_btn", Name(0)));
    EXPECT_FALSE(Page().HideDelButton(L"", L""));
}

}  // namespace
