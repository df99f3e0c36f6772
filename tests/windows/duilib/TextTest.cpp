// Texts with markup: looks, links by mouse and keyboard, arrangement.
#include "DuiLib/TextUI.h"

#include <oleacc.h>

#include "DuiLib/ContainerUI.h"
#include "Rendering.h"
#include "tests/support/FakeLook.h"
#include "tests/support/ImportHook.h"

namespace DuiLib::Test {
namespace {

constexpr std::uint32_t kWhite = 0xFFFFFFFF;

class Texts : public testing::TestWithParam<int> {
  protected:
    int Dpi() const { return GetParam(); }
    int Px(int dip) const { return DipToPx(dip, Dpi()); }
    TestWindow window{R"(<Window size="320,200" bkcolor="#FFFFFFFF" linkcolor="#FF0000FF" hotlinkcolor="#FFFF0000"
        textcolor="#FF000000"><Font id="0" size="16" default="true"/><VerticalLayout>
        <Button name="before" height="20"/>
        <Text name="t" height="80" wordwrap="true" showhtml="true" valign="top"/>
        <Button name="after" height="20"/></VerticalLayout></Window>)"};

    CTextUI& Text(const wchar_t* markup) {
        auto& text = window.Find<CTextUI>(L"t");
        text.SetText(markup);
        return text;
    }
    Picture Draw(const wchar_t* name = L"") { return Render(window, Dpi(), name); }
    // Where pixels of exactly that colour are.
    Rect InkOf(std::uint32_t color) {
        const Picture picture = Draw();
        Rect ink;
        const Rect& px = window.Find(L"t").GetPos();
        for (int y = px.top; y < px.bottom; ++y) {
            for (int x = px.left; x < px.right; ++x) {
                if (picture.At({x, y}) == color) {
                    ink = ink.Union({x, y, x + 1, y + 1});
                }
            }
        }
        return ink;
    }
    void ClickAt(Point px) {
        window.Mouse(WM_MOUSEMOVE, px);
        window.Mouse(WM_LBUTTONDOWN, px, MK_LBUTTON);
        window.Mouse(WM_LBUTTONUP, px);
    }
    static Point Middle(const Rect& px) { return {(px.left + px.right) / 2, (px.top + px.bottom) / 2}; }
};

INSTANTIATE_TEST_SUITE_P(Scales, Texts, testing::Values(96, 144, 192), testing::PrintToStringParamName());

TEST_P(Texts, MarkupIsDrawnAndNotShown) {
    Text(L"plain <b>bold</b> <font color='#00A000'>green</font> <a href='x'>link</a>");
    const Picture picture = Draw(L"markup");
    const Rect ink = picture.InkWithin(window.Find(L"t").GetPos(), kWhite);
    EXPECT_LT(ink.Width(), Px(220));
    const Rect green = InkOf(0xFF00A000), link = InkOf(0xFF0000FF);
    EXPECT_FALSE(green.IsEmpty());
    EXPECT_FALSE(link.IsEmpty());
    EXPECT_LT(green.right, link.left);
    EXPECT_EQ(window.Find(L"t").GetAccessibleInfo().name, L"plain bold green link");
}

TEST_P(Texts, BoldIsWider) {
    Text(L"mmmmmmmm");
    const int plain = InkOf(0xFF000000).Width();
    Text(L"<b>mmmmmmmm</b>");
    EXPECT_GT(InkOf(0xFF000000).Width(), plain);
}

TEST_P(Texts, WithoutShowHtmlTheMarkupIsText) {
    auto& text = Text(L"<b>x</b>");
    const Picture marked = Draw();
    text.SetAttribute(L"showhtml", L"false");
    const Picture plain = Draw();
    const Rect& px = text.GetPos();
    EXPECT_GT(plain.InkWithin(px, kWhite).Width(), 3 * marked.InkWithin(px, kWhite).Width());
    EXPECT_FALSE(text.IsShowHtml());
    EXPECT_EQ(text.GetLinkCount(), 0);
    text.SetAttribute(L"showhtml", L"true");
    EXPECT_EQ(Draw().pixels, marked.pixels);
}

TEST_P(Texts, LinesAreAligned) {
    auto& text = Text(L"<a href='x'>mm</a>");
    const auto link = [&] { return InkOf(0xFF0000FF); };
    EXPECT_LE(link().left, Px(3));
    text.SetAttribute(L"align", L"center");
    EXPECT_NEAR(link().left + link().right, Px(320), Px(3));
    text.SetAttribute(L"align", L"right");
    EXPECT_GE(link().right, Px(317));
    EXPECT_LE(link().bottom, text.GetPos().top + Px(24));
    text.SetAttribute(L"valign", L"center");
    EXPECT_NEAR(link().top + link().bottom, text.GetPos().top + text.GetPos().bottom, Px(12));
    text.SetAttribute(L"valign", L"bottom");
    EXPECT_GE(link().bottom, text.GetPos().bottom - Px(6));
    const Direction direction(true);
    EXPECT_LE(link().left, Px(3));
}

TEST_P(Texts, AnAutomaticHeightFollowsTheLines) {
    auto& text = Text(L"one");
    text.SetAttribute(L"height", L"auto");
    Draw();
    const int line = text.GetPos().Height();
    EXPECT_GT(line, Px(12));
    text.SetText(L"one<br>two<br><br>four");
    Draw();
    EXPECT_EQ(text.GetPos().Height(), 4 * line);
    text.SetText(L"These words are far too many to stand on one line of a window that is so narrow");
    Draw();
    EXPECT_GE(text.GetPos().Height(), 2 * line);
    const Picture picture = Draw();
    EXPECT_LT(picture.InkWithin(text.GetPos(), kWhite).right, text.GetPos().right);
}

TEST_P(Texts, ALinkIsFollowedByAClick) {
    auto& text = Text(L"Go <a href='https://one'>here</a> or <a href='https://two'>there</a>");
    std::vector<std::wstring> followed;
    window.onNotify = [&](TNotifyUI& msg) {
        if (msg.type == NotifyType::kLink) {
            auto* const sender = dynamic_cast<CTextUI*>(msg.sender);
            ASSERT_NE(sender, nullptr);
            followed.push_back(std::to_wstring(msg.wParam) + L" " + sender->GetLinkContent(0));
        }
    };
    EXPECT_EQ(text.GetLinkCount(), 2);
    EXPECT_EQ(text.GetLinkContent(0), L"https://one");
    const Rect links = InkOf(0xFF0000FF);
    ClickAt({links.right - Px(4), Middle(links).y});
    EXPECT_EQ(text.GetLinkContent(1), L"https://one");
    ClickAt({links.left + Px(4), Middle(links).y});
    EXPECT_EQ(followed, (std::vector<std::wstring>{L"1 https://two", L"0 https://one"}));
    EXPECT_EQ(text.GetLinkContent(1), L"https://two");
    EXPECT_EQ(text.GetLinkContent(2), L"");
    EXPECT_EQ(text.GetLinkContent(-1), L"");
    ClickAt({text.GetPos().left + Px(2), Middle(links).y});  // "Go"
    EXPECT_EQ(followed.size(), 2u);
    // Pressed on one and released on the other is no click.
    window.Mouse(WM_LBUTTONDOWN, {links.left + Px(4), Middle(links).y}, MK_LBUTTON);
    EXPECT_EQ(window.PaintManager().GetCapture(), &text);
    window.Mouse(WM_LBUTTONUP, {links.right - Px(4), Middle(links).y});
    EXPECT_EQ(followed.size(), 2u);
    EXPECT_EQ(window.PaintManager().GetCapture(), nullptr);
    // Nor is one whose press has been taken away.
    window.Mouse(WM_LBUTTONDOWN, {links.left + Px(4), Middle(links).y}, MK_LBUTTON);
    window.PaintManager().CancelCapture();
    window.Mouse(WM_LBUTTONUP, {links.left + Px(4), Middle(links).y});
    EXPECT_EQ(followed.size(), 2u);
}

TEST_P(Texts, ATextWithALinkIsToldAsOne) {
    EXPECT_EQ(Text(L"none").GetAccessibleInfo().state & STATE_SYSTEM_LINKED, 0u);
    EXPECT_NE(Text(L"<a href='https://one'>one</a>").GetAccessibleInfo().state & STATE_SYSTEM_LINKED, 0u);
}

TEST_P(Texts, AnAmpersandIsACharacterToo) {
    Text(L"<a href='https://one'>&amp;</a>");
    EXPECT_FALSE(InkOf(0xFF0000FF).IsEmpty());
}

TEST_P(Texts, ALinkUnderThePointerIsHot) {
    Text(L"<a href='x'>mm</a> and <a href='y'>mm</a>");
    const Rect links = InkOf(0xFF0000FF);
    window.Mouse(WM_MOUSEMOVE, {links.left + Px(4), Middle(links).y});
    const Rect hot = InkOf(0xFFFF0000), cold = InkOf(0xFF0000FF);
    EXPECT_FALSE(hot.IsEmpty());
    EXPECT_LT(hot.right, cold.left);
    TEventUI cursor{};
    cursor.type = EventType::kSetCursor;
    cursor.mousePx = {links.left + Px(4), Middle(links).y};
    window.Find(L"t").DoEvent(cursor);
    EXPECT_EQ(GetCursor(), LoadCursorW(nullptr, IDC_HAND));
    cursor.mousePx = {Middle(links).x, links.bottom + Px(30)};
    window.Find(L"t").DoEvent(cursor);
    EXPECT_EQ(GetCursor(), LoadCursorW(nullptr, IDC_ARROW));
    window.Mouse(WM_MOUSEMOVE, window.CenterOf(L"before"));
    EXPECT_TRUE(InkOf(0xFFFF0000).IsEmpty());
}

TEST_P(Texts, LinksAreReachedByTab) {
    auto& text = Text(L"<a href='one'>mm</a> and <a href='two'>mm</a>");
    Draw();
    CPaintManagerUI& manager = window.PaintManager();
    manager.SetFocus(&window.Find(L"before"), true);
    window.Key(VK_TAB);
    EXPECT_EQ(manager.GetFocus(), &text);
    EXPECT_EQ(text.GetAccessibleInfo().value, L"one");
    const Picture ring = Draw(L"link_focus");
    window.Key(VK_RETURN);
    EXPECT_EQ(window.Count(L"link t"), 1);
    EXPECT_EQ(text.GetLinkContent(0), L"one");
    window.Key(VK_TAB);
    EXPECT_EQ(manager.GetFocus(), &text);
    EXPECT_EQ(text.GetAccessibleInfo().value, L"two");
    EXPECT_NE(Draw().pixels, ring.pixels);
    window.Key(VK_RETURN);
    EXPECT_EQ(text.GetLinkContent(0), L"two");
    window.Key(VK_TAB);
    EXPECT_EQ(manager.GetFocus(), &window.Find(L"after"));
    EXPECT_TRUE(manager.SetNextTabControl(false));
    EXPECT_EQ(manager.GetFocus(), &text);
    window.Key(VK_LEFT);
    EXPECT_EQ(text.GetAccessibleInfo().value, L"one");
    window.Key(VK_LEFT);
    EXPECT_EQ(text.GetAccessibleInfo().value, L"one");
}

TEST_P(Texts, ATextWithoutLinksIsNoTabStop) {
    auto& text = Text(L"<b>no link</b>");
    EXPECT_FALSE(text.IsTabStop());
    EXPECT_EQ(text.GetAccessibleInfo().role, ROLE_SYSTEM_STATICTEXT);
    text.SetText(L"<a href='x'>a link</a>");
    EXPECT_TRUE(text.IsTabStop());
    EXPECT_EQ(text.GetAccessibleInfo().role, ROLE_SYSTEM_LINK);
    text.DoDefaultAction();
    EXPECT_EQ(window.Count(L"link t"), 1);
}

TEST_P(Texts, AHandlerMayRemoveTheText) {
    Text(L"<a href='x'>mmmm</a>");
    const Rect link = InkOf(0xFF0000FF);
    window.onNotify = [&](TNotifyUI& msg) {
        if (msg.type == NotifyType::kLink) {
            msg.sender->GetParent()->Remove(msg.sender);
        }
    };
    ClickAt(Middle(link));
    EXPECT_EQ(window.PaintManager().FindControl(L"t"), nullptr);
    Draw();
}

TEST_P(Texts, AChangedTextForgetsItsLinks) {
    auto& text = Text(L"<a href='one'>mm</a> <a href='two'>mm</a>");
    const Rect links = InkOf(0xFF0000FF);
    ClickAt({links.right - Px(4), Middle(links).y});
    EXPECT_EQ(text.GetLinkContent(0), L"two");
    text.SetText(L"<a href='three'>mm</a>");
    EXPECT_EQ(text.GetLinkContent(0), L"three");
    text.SetText(L"");
    EXPECT_EQ(text.GetLinkContent(0), L"");
    EXPECT_TRUE(Draw().InkWithin(text.GetPos(), kWhite).IsEmpty());
}

TEST(LargeTexts, MarkupIsArrangedAnew) {
    harness::FakeLook look;
    TestWindow window(R"(<Window size="320,400"><Font id="0" size="16" default="true"/><VerticalLayout>
        <Text name="t" height="auto" wordwrap="true" showhtml="true" text="Some words that need a line of their own"/>
        </VerticalLayout></Window>)");
    const int before = window.Find(L"t").GetPos().Height();
    look.textScaleFactor = 225;
    harness::FakeLook::Tell(window.GetHWND());
    EXPECT_GT(window.Find(L"t").GetPos().Height(), 3 * before);
}

// Windows smooths text with coloured edges, which are another coverage in each channel.
HFONT WINAPI MakeSmoothFont(const LOGFONTW* font) {
    LOGFONTW smooth = *font;
    smooth.lfQuality = font->lfQuality == ANTIALIASED_QUALITY ? ANTIALIASED_QUALITY : CLEARTYPE_QUALITY;
    return CreateFontIndirectW(&smooth);
}

TEST(TranslucentTexts, AreDrawnInGreyWhateverTheSystemSmoothsWith) {
    const harness::ImportHook hook(GetModuleHandleW(L"DuiLib.dll"), "CreateFontIndirectW", &MakeSmoothFont);
    TestWindow window(R"(<Window size="320,80" bkcolor="#FF000000"><Font id="0" size="30" weight="700" default="true"/>
        <VerticalLayout><Label name="t" text="Sample" textcolor="#80FFFFFF"/></VerticalLayout></Window>)");
    const Picture picture = Render(window, 96);
    const auto count = [&](const Picture& seen) {
        int grey = 0;
        for (int y = 0; y < 80; ++y) {
            for (int x = 0; x < 320; ++x) {
                const std::uint32_t pixel = seen.At({x, y}) & 0xFFFFFF;
                const std::uint32_t blue = pixel & 0xFF;
                EXPECT_EQ(pixel, blue << 16 | blue << 8 | blue) << x << "," << y;
                grey += blue > 0 && blue < 128 ? 1 : 0;
            }
        }
        return grey;
    };
    EXPECT_GT(count(picture), 20);
    // It has the face, size and weight of the font that it stands for.
    window.Find<CLabelUI>(L"t").SetTextColor(0xFFFFFFFF);
    const Rect opaque = Render(window, 96).InkWithin({0, 0, 320, 80}, 0xFF000000);
    const Rect ink = picture.InkWithin({0, 0, 320, 80}, 0xFF000000);
    EXPECT_NEAR(ink.Width(), opaque.Width(), 2);
    EXPECT_NEAR(ink.Height(), opaque.Height(), 2);
}

}  // namespace
}  // namespace DuiLib::Test
