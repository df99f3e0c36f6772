// themes.xml: what is taken from it, what is logged of it, and what names mean without it.
#include "DuiLib/Theme.h"
#include "Rendering.h"
#include "tests/support/FakeLook.h"

namespace DuiLib::Test {
namespace {

using harness::FakeLook;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

class ThemeFiles : public testing::Test {
  protected:
    ~ThemeFiles() override { ResourceFolder::Get().WriteThemes(); }

    // The lines that the file's reading leaves, without the function's name.
    static std::vector<std::string> Read(std::string_view file) {
        ResourceFolder::Get().Write(L"themes.xml", file);
        UITheme::GetInstance()->ForgetFile();
        UITheme::GetInstance()->FindColor(L"text");
        return harness::TestLog::TakeFailures();
    }
    static std::vector<std::string> ReadWithMore(std::string_view more) {
        ResourceFolder::Get().WriteThemes(more);
        UITheme::GetInstance()->FindColor(L"text");
        return harness::TestLog::TakeFailures();
    }
    static DWORD Number(const wchar_t* name) {
        return UITheme::GetInstance()->Number(UITheme::GetInstance()->FindColor(name).value_or(Color()));
    }

    FakeLook look;
};

TEST_F(ThemeFiles, TheProgramsOwnIsSound) {
    EXPECT_THAT(ReadWithMore(""), IsEmpty());
    EXPECT_EQ(Number(L"text"), 0xFF1B1F27u);
    look.SetDark(true);
    UITheme::GetInstance()->Reread();
    EXPECT_EQ(Number(L"text"), 0xFFF1F3F7u);
}

TEST_F(ThemeFiles, WithoutItThereIsNoDarkThemeAndOneLine) {
    look.SetDark(true);
    UITheme::GetInstance()->Reread();
    DeleteFileW((ResourceFolder::Get().Path() + L"themes.xml").c_str());
    UITheme::GetInstance()->ForgetFile();
    EXPECT_EQ(UITheme::GetInstance()->GetKind(), ThemeKind::kLight);
    EXPECT_EQ(Number(L"text"), 0xFF1B1F27u);
    EXPECT_EQ(Number(L"card"), 0xFFFFFFFFu);
    const std::vector<std::string> lines = harness::TestLog::TakeFailures();
    ASSERT_THAT(lines, SizeIs(1));
    EXPECT_THAT(lines.front(), HasSubstr("themes.xml"));
    EXPECT_THAT(lines.front(), HasSubstr("the light theme of the library is used(UITheme::ReadFile)"));
    // A contrast theme needs no file.
    look.highContrast = true;
    UITheme::GetInstance()->Reread();
    EXPECT_EQ(UITheme::GetInstance()->GetKind(), ThemeKind::kContrast);
    EXPECT_EQ(UITheme::GetInstance()->Painted(*UITheme::GetInstance()->FindColor(L"text"), ColorUse::kText),
              0xFFFFFFFFu);
}

TEST_F(ThemeFiles, ADamagedOneCountsAsNone) {
    look.SetDark(true);
    UITheme::GetInstance()->Reread();
    const std::vector<std::string> lines = Read("<Themes>\n  <Color name=\"text\" light=\"#FF000001\"");
    ASSERT_THAT(lines, SizeIs(1));
    EXPECT_THAT(lines.front(), HasSubstr("themes.xml, line 2: "));
    EXPECT_EQ(UITheme::GetInstance()->GetKind(), ThemeKind::kLight);
    EXPECT_EQ(Number(L"text"), 0xFF1B1F27u);
}

TEST_F(ThemeFiles, EachNameThatIsMissingIsTold) {
    const std::vector<std::string> lines =
        Read(R"(<Themes><Color name="text" light="#FF000001" dark="#FF000002" contrast="none"/></Themes>)");
    EXPECT_GT(lines.size(), 10u);
    EXPECT_THAT(lines, testing::Each(HasSubstr("themes.xml has no colour ")));
    EXPECT_THAT(lines, testing::Contains("themes.xml has no colour card(UITheme::ReadFile)"));
    EXPECT_THAT(lines, testing::Not(testing::Contains(HasSubstr("no colour text("))));
    EXPECT_EQ(Number(L"text"), 0xFF000001u);
    look.SetDark(true);
    UITheme::GetInstance()->Reread();
    EXPECT_EQ(Number(L"text"), 0xFF000002u);
    EXPECT_EQ(Number(L"card"), 0xFFFFFFFFu);  // the library's light value
}

TEST_F(ThemeFiles, BadRowsAreToldWithTheirLineAndPassedOver) {
    EXPECT_THAT(
        Read("<Themes>\n"
             "<Color name='a' light='#FF000001' dark='#FF000002' contrast='window'/>\n"
             "<Color name='b' light='red' dark='#FF000002' contrast='window'/>\n"
             "<Color name='c' light='#FF000001' contrast='window'/>\n"
             "<Color name='d' light='#FF000001' dark='#FF000002' contrast='Window'/>\n"
             "<Color name='e' light='#FF000001' dark='#FF000002'/>\n"
             "<Color light='#FF000001' dark='#FF000002' contrast='window'/>\n"
             "<Color name='' light='#FF000001' dark='#FF000002' contrast='window'/>\n"
             "<Mask name='m'/>\n"
             "<Mask contrast='window'/>\n"
             "<Mask name='\xC3\xA4' contrast='\xC3\xA4'/>\n"
             "<Upright/>\n"
             "<Colour name='f' light='#FF000001' dark='#FF000002' contrast='window'/>\n"
             "</Themes>"),
        testing::IsSupersetOf(
            {HasSubstr("themes.xml, line 3: <Color> needs a name, light and dark like #FF010203, and the "
                       "contrast of a system colour(UITheme::ReadFile)"),
             HasSubstr("line 4: <Color> needs"), HasSubstr("line 5: <Color> needs"), HasSubstr("line 6: <Color> needs"),
             HasSubstr("line 7: <Color> needs"), HasSubstr("line 8: <Color> needs"),
             HasSubstr("line 9: <Mask> needs a name and the contrast of a system colour(UITheme::ReadFile)"),
             HasSubstr("line 10: <Mask> needs"), HasSubstr("line 11: <Mask> needs"),
             HasSubstr("line 12: <Upright> is not known, or has no name(UITheme::ReadFile)"),
             HasSubstr("line 13: <Colour> is not known")}));
    EXPECT_EQ(Number(L"a"), 0xFF000001u);
    for (const wchar_t* name : {L"b", L"c", L"d", L"e", L"f"}) {
        EXPECT_EQ(UITheme::GetInstance()->FindColor(name), std::nullopt);
    }
}

TEST_F(ThemeFiles, ItIsReadOnceAndAgainForAnotherFolder) {
    ReadWithMore("<Color name='again' light='#FF000001' dark='#FF000002' contrast='window'/>");
    const std::optional<Color> again = UITheme::GetInstance()->FindColor(L"again");
    ASSERT_TRUE(again);
    ResourceFolder::Get().Write(L"themes.xml", "<Themes/>");
    EXPECT_EQ(Number(L"again"), 0xFF000001u);
    EXPECT_THAT(harness::TestLog::TakeFailures(), IsEmpty());
    CPaintManagerUI::SetResourcePath(ResourceFolder::Get().Path());
    EXPECT_EQ(UITheme::GetInstance()->FindColor(L"again"), again);  // the name keeps its row
    EXPECT_EQ(Number(L"again"), 0u);
    EXPECT_FALSE(harness::TestLog::TakeFailures().empty());
}

TEST_F(ThemeFiles, UnknownNamesInLayoutsAreBadValues) {
    ReadWithMore("<Color name='known' light='#FF000001' dark='#FF000002' contrast='window'/>");
    TestWindow window(
        "<Window size=\"80,60\" bkcolor=\"unknown\">\n"
        "<VerticalLayout>\n"
        "<Button bkcolor=\"unknown\" hotbkcolor=\"known\" hottextcolor=\"Known\"/>\n"
        "<Slider barcolor=\"unknown\" forecolor=\"known\"/>\n"
        "</VerticalLayout></Window>");
    std::vector<std::string> lines;
    for (const std::string& line : harness::TestLog::TakeFailures()) {
        lines.push_back(line.substr(line.find(", line")));
    }
    EXPECT_THAT(lines, ElementsAre(", line 1: <Window>: bad value bkcolor=\"unknown\"(CDialogBuilder::Create)",
                                   ", line 3: <Button>: bad value bkcolor=\"unknown\"(CDialogBuilder::Create)",
                                   ", line 3: <Button>: bad value hottextcolor=\"Known\"(CDialogBuilder::Create)",
                                   ", line 4: <Slider>: bad value barcolor=\"unknown\"(CDialogBuilder::Create)"));
}

// --- pictures

constexpr std::uint32_t kRed = 0xFFFF0000, kGreen = 0xFF00FF00, kBlue = 0xFF0000FF, kWhite = 0xFFFFFFFF,
                        kBlack = 0xFF000000;

class ThemePictures : public ThemeFiles {
  protected:
    ThemePictures() {
        for (const char* folder :
             {"drawable", "drawable-200", "drawable-dark", "drawable-dark-200", "drawable-contrast"}) {
            std::filesystem::remove_all(std::filesystem::path(ResourceFolder::Get().Path()) / folder);
        }
    }

    static void Write(const wchar_t* name, std::uint32_t color, int size = 4) {
        WriteImage(name, {size, size}, std::vector<std::uint32_t>(static_cast<std::size_t>(size * size), color));
    }
    std::uint32_t Look(const wchar_t* image, int dpi = 96) {
        window.Find(L"c").SetBkImage(image);
        return Render(window, dpi).CenterOf({0, 0, DipToPx(80, dpi), DipToPx(60, dpi)});
    }
    void Tell() { FakeLook::Tell(window.GetHWND()); }
    void SetDark(bool dark) {
        look.SetDark(dark);
        Tell();
    }

    TestWindow window{
        R"(<Window size="80,60" bkcolor="#FF808080"><VerticalLayout><Control name="c"/></VerticalLayout></Window>)"};
};

TEST_F(ThemePictures, ComeFromTheThemesFolderWhereItHasThem) {
    Write(L"drawable/a.png", kRed);
    Write(L"drawable-200/a.png", kRed, 8);
    Write(L"drawable-dark/a.png", kBlue);
    Write(L"drawable-dark-200/a.png", kGreen, 8);
    Write(L"drawable/only.png", kRed);
    EXPECT_EQ(Look(L"drawable/a.png"), kRed);
    look.SetDark(true);
    Tell();
    EXPECT_EQ(Look(L"drawable/a.png"), kBlue);
    EXPECT_EQ(Look(L"drawable\\a.png", 192), kGreen);
    EXPECT_EQ(Look(L"drawable/only.png"), kRed);
    look.SetDark(false);
    Tell();
    EXPECT_EQ(Look(L"drawable/a.png"), kRed);
}

TEST_F(ThemePictures, WhatServesBothThemesIsKept) {
    Write(L"drawable/a.png", kRed);
    Write(L"drawable/both.png", kRed);
    Write(L"drawable-dark/a.png", kBlue);
    EXPECT_EQ(Look(L"drawable/a.png"), kRed);
    EXPECT_EQ(Look(L"drawable/both.png"), kRed);
    // A file that is read again would be found changed.
    Write(L"drawable/both.png", kGreen);
    look.SetDark(true);
    Tell();
    EXPECT_EQ(Look(L"drawable/both.png"), kRed);
    EXPECT_EQ(Look(L"drawable/a.png"), kBlue);
}

// In the next four, a file that is read again would be found changed.
TEST_F(ThemePictures, ThoseOfTheFormerThemeAreKeptForItsComingBack) {
    const auto write = [](std::uint32_t light, std::uint32_t dark) {
        Write(L"drawable/a.png", light);
        Write(L"drawable-dark/a.png", dark);
        Write(L"drawable/large.png", light, 520);  // of more pixels than are kept as they are read
        Write(L"drawable-dark/large.png", dark, 520);
    };
    write(kRed, kBlue);
    for (const bool dark : {false, true, false, true}) {
        SetDark(dark);
        EXPECT_EQ(Look(L"drawable/a.png"), dark ? kBlue : kRed);
        EXPECT_EQ(Look(L"drawable/large.png"), dark ? kBlue : kRed);
        if (dark) {
            write(kGreen, kGreen);
        }
    }
    SetDark(false);
    EXPECT_EQ(Look(L"file='drawable/a.png' dest='0,0,80,60'"), kRed) << "in another size";
}

TEST_F(ThemePictures, OneFormerThemeIsKeptAndShownForNoOther) {
    Write(L"drawable/a.png", kRed);
    Write(L"drawable-dark/a.png", kBlue);
    Write(L"drawable-contrast/a.png", kWhite);
    const auto contrast = [this](bool on) {
        look.highContrast = on;
        Tell();
    };
    EXPECT_EQ(Look(L"drawable/a.png"), kRed);
    SetDark(true);
    EXPECT_EQ(Look(L"drawable/a.png"), kBlue);
    Write(L"drawable/a.png", kGreen);
    Write(L"drawable-dark/a.png", kGreen);
    contrast(true);
    EXPECT_EQ(Look(L"drawable/a.png"), kWhite);
    contrast(false);
    EXPECT_EQ(Look(L"drawable/a.png"), kBlue);
    contrast(true);
    EXPECT_EQ(Look(L"drawable/a.png"), kWhite);
    look.SetDark(false);
    contrast(false);
    EXPECT_EQ(Look(L"drawable/a.png"), kGreen);
}

TEST_F(ThemePictures, AnotherScaleAndARemovalForgetThoseOfTheFormerThemeToo) {
    for (const bool removed : {false, true}) {
        Write(L"drawable/a.png", kRed);
        Write(L"drawable-dark/a.png", kBlue);
        window.PaintManager().RemoveImage(L"drawable/a.png");
        SetDark(false);
        EXPECT_EQ(Look(L"drawable/a.png"), kRed);
        SetDark(true);
        EXPECT_EQ(Look(L"drawable/a.png"), kBlue);
        Write(L"drawable/a.png", kGreen);
        if (removed) {
            window.PaintManager().RemoveImage(L"drawable/a.png");
        } else {
            EXPECT_EQ(Look(L"drawable/a.png", 192), kBlue);
        }
        EXPECT_EQ(Look(L"drawable/a.png"), kBlue);
        SetDark(false);
        EXPECT_EQ(Look(L"drawable/a.png"), kGreen) << removed;
    }
}

// Of twelve mebipixels that are kept, those that are not shown for now take nothing away.
TEST_F(ThemePictures, HoweverOftenTheThemeChangesTheRestIsKept) {
    const std::wstring names[] = {L"drawable/first.png", L"drawable/second.png"};
    const auto write = [&](std::uint32_t light, std::uint32_t dark) {
        for (const wchar_t* const name : {L"first.png", L"second.png"}) {
            Write((std::wstring(L"drawable/") + name).c_str(), light, 520);
            Write((std::wstring(L"drawable-dark/") + name).c_str(), dark, 520);
        }
    };
    write(kRed, kBlue);
    for (int i = 0; i < 10; ++i) {
        const bool dark = i % 2 != 0;
        SetDark(dark);
        for (const std::wstring& name : names) {
            EXPECT_EQ(Look((L"file='" + name + L"' dest='0,0,1024,1024'").c_str()), dark ? kBlue : kRed) << i;
        }
        if (i == 1) {
            write(kGreen, kGreen);
        }
    }
}

TEST_F(ThemePictures, RegisteredOnesStay) {
    const std::uint32_t pixel = 0x0000FF00;
    const HBITMAP bitmap = CreateBitmap(1, 1, 1, 32, &pixel);
    EXPECT_TRUE(window.PaintManager().AddImage(L"drawable/mine.png", bitmap, 10, 10, false, false));
    EXPECT_EQ(Look(L"drawable/mine.png"), kGreen);
    look.SetDark(true);
    Tell();
    EXPECT_EQ(Look(L"drawable/mine.png"), kGreen);
}

TEST_F(ThemePictures, MasksHaveTheSystemsColours) {
    ReadWithMore("<Mask name='m' contrast='highlight'/><Mask name='f' contrast='btnface'/>");
    Write(L"drawable/m.png", kRed);
    Write(L"drawable-contrast/m.png", kWhite);
    Write(L"drawable/f.png", kRed);
    Write(L"drawable-contrast/f.png", kBlack);
    Write(L"drawable/other.png", kRed);
    Write(L"drawable-contrast/other.png", kWhite);
    Write(L"drawable/photo.png", kRed);
    look.highContrast = true;
    Tell();
    EXPECT_EQ(Look(L"drawable/m.png"), 0xFF1AEBFFu);
    EXPECT_EQ(Look(L"drawable/f.png"), 0xFFFFFFFEu);  // black: the other one of the pair
    EXPECT_EQ(Look(L"drawable/other.png"), 0xFFFFFFFFu);
    EXPECT_EQ(Look(L"drawable/photo.png"), kRed);
    look.colors[COLOR_HIGHLIGHT] = RGB(1, 2, 3);
    Tell();
    EXPECT_EQ(Look(L"drawable/m.png"), 0xFF010203u);
}

TEST_F(ThemePictures, LargeMasksAndPartsOfMasksAreTintedToo) {
    ReadWithMore("<Mask name='large' contrast='highlight'/>");
    Write(L"drawable/large.png", kRed, 600);
    Write(L"drawable-contrast/large.png", kWhite, 600);
    look.highContrast = true;
    Tell();
    EXPECT_EQ(Look(L"drawable/large.png"), 0xFF1AEBFFu);
    EXPECT_EQ(Look(L"file='drawable/large.png' source='10,10,20,20'"), 0xFF1AEBFFu);
}

TEST_F(ThemePictures, WhatIsNoMaskFollowsTheLightnessOfTheGround) {
    Write(L"drawable/a.png", kRed);
    Write(L"drawable-dark/a.png", kBlue);
    look.highContrast = true;
    for (const auto& [ground, color] : std::vector<std::pair<COLORREF, std::uint32_t>>{{RGB(0, 0, 0), kBlue},
                                                                                       {RGB(255, 255, 255), kRed},
                                                                                       {RGB(117, 117, 117), kBlue},
                                                                                       {RGB(119, 119, 119), kRed}}) {
        look.colors[COLOR_WINDOW] = ground;
        Tell();
        EXPECT_EQ(Look(L"drawable/a.png"), color) << std::hex << ground;
    }
}

TEST_F(ThemePictures, WhatHasNoDirectionIsNotMirrored) {
    ReadWithMore("<Upright name='tick'/>");
    std::vector<std::uint32_t> halves;
    for (int i = 0; i < 16; ++i) {
        halves.push_back(i % 4 < 2 ? kRed : kBlue);
    }
    WriteImage(L"drawable/tick.png", {4, 4}, halves);
    WriteImage(L"drawable/arrow.png", {4, 4}, halves);
    const auto left = [&](const wchar_t* image) {
        window.Find(L"c").SetBkImage(image);
        return Render(window, 96).At({10, 30});
    };
    const Direction direction(true);
    EXPECT_EQ(left(L"file='drawable/tick.png' reverse='true'"), kRed);
    EXPECT_EQ(left(L"file='drawable/arrow.png' reverse='true'"), kBlue);
    EXPECT_EQ(left(L"file='drawable/arrow.png'"), kRed);
}

}  // namespace
}  // namespace DuiLib::Test
