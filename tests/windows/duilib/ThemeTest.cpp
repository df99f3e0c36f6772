// The theme of all windows: what the system is asked and when, and what is painted.
#include "DuiLib/Theme.h"

#include "DuiLib/ContainerUI.h"
#include "DuiLib/ProgressUI.h"
#include "DuiLib/TextUI.h"
#include "Rendering.h"
#include "tests/support/FakeLook.h"
#include "tests/support/PrivateRegistry.h"

namespace DuiLib::Test {
namespace {

using harness::FakeLook;

constexpr char kColors[] = R"(
  <Color name="t_ground" light="#FF101010" dark="#FF202020" contrast="btnface"/>
  <Color name="t_line" light="#FF505050" dark="#FF606060" contrast="graytext"/>)";

// Windows whose ground is "t_ground".
class Themes : public testing::Test {
  protected:
    Themes() { ResourceFolder::Get().WriteThemes(kColors); }
    ~Themes() override { ResourceFolder::Get().WriteThemes(); }

    static std::string Layout(const std::string& content, const std::string& attributes = {}) {
        return R"(<Window size="80,60" bkcolor="t_ground" )" + attributes +
               "><Font id=\"0\" size=\"20\" default=\"true\"/>" + "<Container name=\"root\">" + content +
               "</Container></Window>";
    }
    static std::uint32_t Pixel(TestWindow& window, Point px = {40, 30}) { return Render(window, 96).At(px); }
    // Whether something of the window waits to be painted; nothing does any more afterwards.
    static bool IsPainting(TestWindow& window) {
        const bool waits = GetUpdateRect(window.GetHWND(), nullptr, FALSE) != FALSE;
        ValidateRect(window.GetHWND(), nullptr);
        return waits;
    }
    static int FontHeight(TestWindow& window) { return FontOf(window).lfHeight; }
    static LOGFONTW FontOf(TestWindow& window) {
        LOGFONTW font{};
        GetObjectW(window.PaintManager().GetFont(0), sizeof(font), &font);
        return font;
    }

    static constexpr std::uint32_t kLight = 0xFF101010, kDark = 0xFF202020, kContrast = 0xFF000040;
    FakeLook look;
};

TEST_F(Themes, TheSystemDecides) {
    EXPECT_EQ(UITheme::GetInstance()->GetKind(), ThemeKind::kLight);
    {
        TestWindow window(Layout(""));
        EXPECT_EQ(Pixel(window), kLight);
    }
    look.SetDark(true);
    UITheme::GetInstance()->Reread();
    EXPECT_EQ(UITheme::GetInstance()->GetKind(), ThemeKind::kDark);
    {
        TestWindow window(Layout(""));
        EXPECT_EQ(Pixel(window), kDark);
    }
    look.highContrast = true;
    UITheme::GetInstance()->Reread();
    EXPECT_EQ(UITheme::GetInstance()->GetKind(), ThemeKind::kContrast);
    TestWindow window(Layout(""));
    EXPECT_EQ(Pixel(window), kContrast);
}

TEST_F(Themes, AQuestionThatTheSystemRefusesMeansNo) {
    look.highContrast = look.refusesHighContrast = true;
    UITheme::GetInstance()->Reread();
    EXPECT_EQ(UITheme::GetInstance()->GetKind(), ThemeKind::kLight);
}

TEST_F(Themes, EveryMessageThatMayMeanAChangeIsFollowedAtOnce) {
    TestWindow first(Layout("")), second(Layout(""));
    first.ShowWindow(true, false);
    second.ShowWindow(true, false);
    PumpPending();
    bool dark = false;
    for (const UINT message : {static_cast<UINT>(WM_SETTINGCHANGE), static_cast<UINT>(WM_SYSCOLORCHANGE),
                               static_cast<UINT>(WM_THEMECHANGED)}) {
        IsPainting(first);
        IsPainting(second);
        look.SetDark(dark = !dark);
        EXPECT_EQ(UITheme::GetInstance()->GetKind(), dark ? ThemeKind::kLight : ThemeKind::kDark)
            << "nothing was told yet";
        SendMessageW(first.GetHWND(), message, 0, 0);
        for (TestWindow* window : {&first, &second}) {
            EXPECT_TRUE(IsPainting(*window)) << message;
            EXPECT_EQ(Pixel(*window), dark ? kDark : kLight) << message;
        }
    }
}

TEST_F(Themes, WhatTheMessageSaysDoesNotMatter) {
    TestWindow window(Layout(""));
    constexpr wchar_t kRight[] = L"ImmersiveColorSet";
    const std::pair<WPARAM, const wchar_t*> parameters[] = {
        {0, kRight}, {0, nullptr}, {0, L"intl"}, {SPI_SETWORKAREA, L""}, {SPI_SETHIGHCONTRAST, nullptr}, {9999, L"x"}};
    bool dark = false;
    for (const auto& [wParam, text] : parameters) {
        look.SetDark(dark = !dark);
        SendMessageW(window.GetHWND(), WM_SETTINGCHANGE, wParam, reinterpret_cast<LPARAM>(text));
        EXPECT_EQ(Pixel(window), dark ? kDark : kLight) << wParam;
    }
}

TEST_F(Themes, AMessageWithoutAChangeChangesNothing) {
    TestWindow window(Layout(""));
    window.ShowWindow(true, false);
    PumpPending();
    IsPainting(window);
    const unsigned fonts = window.PaintManager().GetFontGeneration();
    const int asked = look.questions;
    look.darkFrames.clear();
    window.notifications.clear();
    FakeLook::Tell(window.GetHWND());
    SendMessageW(window.GetHWND(), WM_SYSCOLORCHANGE, 0, 0);
    SendMessageW(window.GetHWND(), WM_THEMECHANGED, 0, 0);
    EXPECT_GT(look.questions, asked);
    EXPECT_FALSE(IsPainting(window));
    EXPECT_EQ(window.PaintManager().GetFontGeneration(), fonts);
    EXPECT_TRUE(look.darkFrames.empty());
    EXPECT_TRUE(window.notifications.empty());
}

TEST_F(Themes, NothingIsAskedWhileNothingHappens) {
    TestWindow window(Layout(R"(<Label text="a"/>)"));
    Render(window, 96);
    const int asked = look.questions;
    Render(window, 144);
    EXPECT_EQ(look.questions, asked);
}

TEST_F(Themes, ColoursOfTheSystemCountInAContrastThemeOnly) {
    TestWindow window(Layout(""));
    window.ShowWindow(true, false);
    PumpPending();
    look.highContrast = true;
    FakeLook::Tell(window.GetHWND());
    EXPECT_EQ(Pixel(window), kContrast);
    IsPainting(window);
    look.colors[COLOR_BTNFACE] = RGB(1, 2, 3);
    FakeLook::Tell(window.GetHWND());
    EXPECT_TRUE(IsPainting(window));
    EXPECT_EQ(Pixel(window), 0xFF010203u);
    look.highContrast = false;
    FakeLook::Tell(window.GetHWND());
    EXPECT_EQ(Pixel(window), kLight);
}

TEST_F(Themes, EachColourOfTheSystemHasItsPlace) {
    look.highContrast = true;
    UITheme& theme = *UITheme::GetInstance();
    theme.Reread();
    const auto painted = [&](const wchar_t* name) { return theme.Painted(*theme.FindColor(name), ColorUse::kGround); };
    EXPECT_EQ(painted(L"window"), 0xFF000000u);
    EXPECT_EQ(painted(L"text"), 0xFFFFFFFFu);
    EXPECT_EQ(painted(L"link"), 0xFFFFFF00u);
    EXPECT_EQ(painted(L"textdisabled"), 0xFF3FF23Fu);
    EXPECT_EQ(painted(L"button"), 0xFF000040u);
    EXPECT_EQ(painted(L"buttontext"), 0xFFFFFFFEu);
    EXPECT_EQ(painted(L"accent"), 0xFF1AEBFFu);
    EXPECT_EQ(painted(L"onaccent"), 0xFF000001u);
    EXPECT_EQ(painted(L"mask"), 0u);
}

TEST_F(Themes, TheFrameFollows) {
    look.SetDark(true);
    UITheme::GetInstance()->Reread();
    TestWindow window(Layout(""));
    const HWND handle = window.GetHWND();
    EXPECT_EQ(look.darkFrames, (std::map<HWND, bool>{{handle, true}}));
    look.highContrast = true;
    FakeLook::Tell(handle);
    EXPECT_FALSE(look.darkFrames[handle]);
    look.highContrast = false;
    FakeLook::Tell(handle);
    EXPECT_TRUE(look.darkFrames[handle]);
    look.SetDark(false);
    FakeLook::Tell(handle);
    EXPECT_FALSE(look.darkFrames[handle]);
}

TEST_F(Themes, AWindowMayGoWhileTheOthersAreTold) {
    auto first = std::make_unique<TestWindow>(Layout(""));
    auto second = std::make_unique<TestWindow>(Layout(""));
    TestWindow* const kept = first.get();
    kept->onNotify = [&](TNotifyUI& msg) {
        if (msg.type == NotifyType::kTextSizeChanged) {
            second.reset();
        }
    };
    look.textScaleFactor = 150;
    FakeLook::Tell(kept->GetHWND());
    EXPECT_EQ(second, nullptr);
    EXPECT_EQ(FontHeight(*kept), -30);
}

// --- text

TEST_F(Themes, TextsHaveTheSizeThatTheUserChose) {
    TestWindow window(Layout(R"(<Label name="a" text="A text" height="auto"/>)"));
    const int before = window.Find(L"a").GetPos().Height();
    EXPECT_EQ(FontHeight(window), -20);
    for (const auto& [factor, height] : std::vector<std::pair<DWORD, int>>{
             {150, -30}, {225, -45}, {226, -45}, {400, -45}, {101, -20}, {103, -21}, {100, -20}, {99, -20}, {0, -20}}) {
        look.textScaleFactor = factor;
        FakeLook::Tell(window.GetHWND());
        EXPECT_EQ(FontHeight(window), height) << factor;
    }
    look.textScaleFactor = 225;
    FakeLook::Tell(window.GetHWND());
    EXPECT_GT(window.Find(L"a").GetPos().Height(), 2 * before);
    window.PaintManager().SetDPI(144);
    EXPECT_EQ(FontHeight(window), -68);  // 20 * 2.25 * 1.5, rounded
    look.textScaleFactor.reset();
    FakeLook::Tell(window.GetHWND());
    EXPECT_EQ(FontHeight(window), -30);
}

TEST_F(Themes, ANewSizeOfTextIsNotified) {
    TestWindow window(Layout(""));
    look.textScaleFactor = 120;
    FakeLook::Tell(window.GetHWND());
    EXPECT_EQ(window.Count(L"textsizechanged root"), 1);
    look.messageFace = L"DejaVu Sans";
    FakeLook::Tell(window.GetHWND());
    look.SetDark(true);
    FakeLook::Tell(window.GetHWND());
    EXPECT_EQ(window.Count(L"textsizechanged root"), 1);
}

TEST_F(Themes, TheMessageFontAndTheSmoothingAreRenewed) {
    TestWindow window(Layout(R"(<Label text="a"/>)"));
    window.ShowWindow(true, false);
    PumpPending();
    EXPECT_STREQ(FontOf(window).lfFaceName, L"Segoe UI");
    look.messageFace = L"DejaVu Sans";
    FakeLook::Tell(window.GetHWND());
    EXPECT_STREQ(FontOf(window).lfFaceName, L"DejaVu Sans");
    for (UINT* setting : {&look.smoothing, &look.smoothingType, &look.smoothingContrast}) {
        const unsigned fonts = window.PaintManager().GetFontGeneration();
        IsPainting(window);
        ++*setting;
        FakeLook::Tell(window.GetHWND());
        EXPECT_GT(window.PaintManager().GetFontGeneration(), fonts);
        EXPECT_TRUE(IsPainting(window));
    }
    look.refusesMetrics = true;
    look.messageFace = L"unknown";
    FakeLook::Tell(window.GetHWND());
    EXPECT_STREQ(FontOf(window).lfFaceName, L"Segoe UI");
}

TEST_F(Themes, OtherInstalledFontsAlwaysRenewThem) {
    TestWindow window(Layout(""));
    const unsigned fonts = window.PaintManager().GetFontGeneration();
    SendMessageW(window.GetHWND(), WM_FONTCHANGE, 0, 0);
    EXPECT_EQ(window.PaintManager().GetFontGeneration(), fonts + 1);
}

// --- what is painted with which colour

TEST_F(Themes, WindowsAndControlsTakeNames) {
    TestWindow window(
        Layout(R"(<Control name="c" float="true" pos="10,10,30,30" bkcolor="t_line"/>)", R"(bordercolor="t_line")"));
    EXPECT_EQ(Pixel(window, {20, 20}), 0xFF505050u);
    EXPECT_EQ(Pixel(window, {0, 30}), 0xFF505050u);
    look.SetDark(true);
    FakeLook::Tell(window.GetHWND());
    EXPECT_EQ(Pixel(window, {20, 20}), 0xFF606060u);
    EXPECT_EQ(Pixel(window, {0, 30}), 0xFF606060u);
    look.highContrast = true;
    FakeLook::Tell(window.GetHWND());
    EXPECT_EQ(Pixel(window, {20, 20}), 0xFF3FF23Fu);
    EXPECT_EQ(Pixel(window, {0, 30}), 0xFF3FF23Fu);
}

// The number that a program sets over a layout's name is kept and calculated with, and not painted in a contrast theme.
TEST_F(Themes, ANumberOverANameStaysANumber) {
    TestWindow window(Layout(R"(<Control name="c" bkcolor="t_line"/>)"));
    CControlUI& control = window.Find(L"c");
    EXPECT_EQ(control.GetBkColor(), 0xFF505050u);
    control.SetBkColor(0xFF123456);
    EXPECT_EQ(control.GetBkColor(), 0xFF123456u);
    EXPECT_EQ(Pixel(window), 0xFF123456u);
    look.SetDark(true);
    FakeLook::Tell(window.GetHWND());
    EXPECT_EQ(Pixel(window), 0xFF123456u);
    look.highContrast = true;
    FakeLook::Tell(window.GetHWND());
    EXPECT_EQ(control.GetBkColor(), 0xFF123456u);
    EXPECT_EQ(Pixel(window), 0xFF3FF23Fu);
    look.highContrast = false;
    FakeLook::Tell(window.GetHWND());
    EXPECT_EQ(Pixel(window), 0xFF123456u);
}

TEST_F(Themes, ANameIsANumberOfTheGroundsThatAreNear) {
    TestWindow window(Layout(R"(<Control name="c" bkcolor="t_line"/>)"));
    look.highContrast = true;
    FakeLook::Tell(window.GetHWND());
    EXPECT_EQ(window.Find(L"c").GetBkColor(), 0xFF606060u);  // black ground
    look.colors[COLOR_WINDOW] = RGB(255, 255, 255);
    FakeLook::Tell(window.GetHWND());
    EXPECT_EQ(window.Find(L"c").GetBkColor(), 0xFF505050u);
}

TEST_F(Themes, NumbersOfALayoutBecomeTheSystemsColours) {
    look.highContrast = true;
    UITheme::GetInstance()->Reread();
    TestWindow window(R"(<Window size="200,200" bkcolor="#FFFF8040" bordercolor="#FF00FF00"><VerticalLayout>
        <Control name="opaque" height="20" padding="1,1,1,0" bkcolor="#FF102030"/>
        <Control name="tint" height="20" bkcolor="#80102030"/>
        <Control name="framed" height="20" bordersize="2" bordercolor="#40102030"/>
        <Progress name="bar" height="20" value="50" barcolor="#FF102030" forecolor="#FF304050"/>
    </VerticalLayout></Window>)");
    const Picture picture = Render(window, 96);
    EXPECT_EQ(picture.At({100, 190}), 0xFF000000u);
    EXPECT_EQ(picture.At({0, 190}), 0xFFFFFFFFu);
    EXPECT_EQ(picture.CenterOf(window.Find(L"opaque").GetPos()), 0xFF000000u);
    EXPECT_EQ(picture.CenterOf(window.Find(L"tint").GetPos()), 0xFF000000u);
    EXPECT_EQ(picture.At({100, window.Find(L"framed").GetPos().top}), 0xFFFFFFFFu);
    const Rect bar = window.Find(L"bar").GetPos();
    EXPECT_EQ(picture.At({50, bar.top + 10}), 0xFF1AEBFFu);
    EXPECT_EQ(picture.At({150, bar.top + 10}), 0xFFFFFFFFu);
}

// Whether some pixel of the rectangle has that colour: text on a ground of another one.
bool Holds(const Picture& picture, const Rect& px, std::uint32_t color) {
    return picture.CountOf(px, color) > 0;
}

TEST_F(Themes, TextsLinksAndMarkup) {
    look.highContrast = true;
    UITheme::GetInstance()->Reread();
    TestWindow window(R"(<Window size="300,240"><Font id="0" size="30" weight="700" default="true"/><VerticalLayout>
        <Label name="number" height="40" text="MMM" textcolor="#FF102030"/>
        <Label name="name" height="40" text="MMM" textcolor="linkhover"/>
        <Label name="off" height="40" text="MMM" enabled="false"/>
        <Text name="html" height="40" showhtml="true" text="&lt;font color=&quot;#102030&quot;>MMM&lt;/font>"/>
        <Text name="link" height="40" showhtml="true" text="&lt;a href=&quot;x&quot;>MMM&lt;/a>"/>
    </VerticalLayout></Window>)");
    const Picture picture = Render(window, 96);
    const std::pair<const wchar_t*, std::uint32_t> expected[] = {{L"number", 0xFFFFFFFF},
                                                                 {L"name", 0xFFFFFF00},
                                                                 {L"off", 0xFFFFFFFF},  // a number of the library's own
                                                                 {L"html", 0xFFFFFFFF},
                                                                 {L"link", 0xFFFFFF00}};
    for (const auto& [name, color] : expected) {
        EXPECT_TRUE(Holds(picture, window.Find(name).GetPos(), color)) << testing::PrintToString(std::wstring(name));
        EXPECT_FALSE(Holds(picture, window.Find(name).GetPos(), 0xFF102030u));
    }
}

TEST_F(Themes, InAContrastThemeNoPictureLiesBehindText) {
    WriteImage(L"red.png", {4, 4}, std::vector<std::uint32_t>(16, 0xFFFF0000));
    TestWindow window(R"(<Window size="100,100"><VerticalLayout>
        <Control name="bare" height="20" bkimage="red.png"/>
        <Label name="text" height="20" text="a" bkimage="red.png"/>
        <Container name="empty" height="20" bkimage="red.png"/>
        <Container name="full" height="20" bkimage="red.png"><Control width="1" height="1"/></Container>
    </VerticalLayout></Window>)");
    const auto shows = [&](const wchar_t* name) {
        const Rect& px = window.Find(name).GetPos();
        return Render(window, 96).At({px.right - 2, px.bottom - 2}) == 0xFFFF0000u;
    };
    for (const wchar_t* name : {L"bare", L"text", L"empty", L"full"}) {
        EXPECT_TRUE(shows(name)) << testing::PrintToString(std::wstring(name));
    }
    look.highContrast = true;
    FakeLook::Tell(window.GetHWND());
    EXPECT_TRUE(shows(L"bare"));
    EXPECT_TRUE(shows(L"empty"));
    EXPECT_FALSE(shows(L"text"));
    EXPECT_FALSE(shows(L"full"));
}

TEST_F(Themes, TheFocusRingAndTheScrollBarFollow) {
    TestWindow window(R"(<Window size="100,100" focuscolor="t_line" bkcolor="t_ground" textcolor="t_line">
        <VerticalLayout vscrollbar="true"><Button name="b" height="20"/><Control height="220"/></VerticalLayout></Window>)");
    window.PaintManager().SetFocus(&window.Find(L"b"), true);
    const Rect thumb{88, 24, 100, 40};  // a part of it, below the button and its ring
    const auto picture = [&] { return Render(window, 96); };
    EXPECT_EQ(picture().At({50, 0}), 0xFF505050u);
    EXPECT_EQ(picture().At({50, 2}), kLight);
    EXPECT_FALSE(Holds(picture(), thumb, 0xFF505050u));  // thinned out
    look.highContrast = true;
    FakeLook::Tell(window.GetHWND());
    EXPECT_EQ(picture().At({50, 0}), 0xFF3FF23Fu);
    EXPECT_EQ(picture().At({50, 2}), kContrast);
    EXPECT_TRUE(Holds(picture(), thumb, 0xFF3FF23Fu));
}

// --- the real system

TEST(SystemLook, IsReadFromTheUsersSettings) {
    const harness::PrivateRegistry registry;
    TestWindow window(R"(<Window size="80,60"><Font id="0" size="20" default="true"/><Container/></Window>)");
    UITheme& theme = *UITheme::GetInstance();
    const auto set = [&](const wchar_t* key, const wchar_t* value, DWORD type, const void* data, DWORD size) {
        EXPECT_EQ(RegSetKeyValueW(HKEY_CURRENT_USER, key, value, type, data, size), ERROR_SUCCESS);
        FakeLook::Tell(window.GetHWND());
    };
    constexpr wchar_t kPersonalize[] = L"Software\\Microsoft\\Windows\\CurrentVersion\\Themes\\Personalize";
    constexpr wchar_t kAccessibility[] = L"Software\\Microsoft\\Accessibility";
    FakeLook::Tell(window.GetHWND());
    EXPECT_EQ(theme.GetKind(), ThemeKind::kLight);
    EXPECT_EQ(theme.GetTextPercent(), 100);
    const DWORD dark = 0, light = 1, large = 175;
    set(kPersonalize, L"AppsUseLightTheme", REG_DWORD, &dark, sizeof(dark));
    EXPECT_EQ(theme.GetKind(), ThemeKind::kDark);
    set(kPersonalize, L"AppsUseLightTheme", REG_DWORD, &light, sizeof(light));
    EXPECT_EQ(theme.GetKind(), ThemeKind::kLight);
    set(kPersonalize, L"AppsUseLightTheme", REG_SZ, L"0", 4);
    EXPECT_EQ(theme.GetKind(), ThemeKind::kLight);
    set(kAccessibility, L"TextScaleFactor", REG_DWORD, &large, sizeof(large));
    EXPECT_EQ(theme.GetTextPercent(), 175);
    EXPECT_FALSE(theme.GetMessageFace().empty());
    RegDeleteKeyValueW(HKEY_CURRENT_USER, kAccessibility, L"TextScaleFactor");
    FakeLook::Tell(window.GetHWND());
    EXPECT_EQ(theme.GetTextPercent(), 100);
}

}  // namespace
}  // namespace DuiLib::Test
