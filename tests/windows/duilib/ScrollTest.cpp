// Containers that scroll: bars, wheel, keys, focus.
#include "DuiLib/Layouts.h"
#include "DuiLib/UICulture.h"
#include "Rendering.h"

namespace DuiLib::Test {
namespace {

// 300 × 200 with a content of 600: ten buttons of 60.
constexpr char kLayout[] = R"(<Window size="300,200"><VerticalLayout name="list" vscrollbar="true">
    <Button name="b0" height="60"/><Button name="b1" height="60"/><Button name="b2" height="60"/><Button name="b3" height="60"/>
    <Button name="b4" height="60"/><Button name="b5" height="60"/><Button name="b6" height="60"/><Button name="b7" height="60"/>
    <Button name="b8" height="60"/><Button name="b9" height="60"/></VerticalLayout></Window>)";

class Scroll : public testing::Test {
  protected:
    void Load(std::string_view layout) {
        window.emplace(layout);
        list = &window->Find<CContainerUI>(L"list");
    }
    void Wheel(Point clientPx, int delta, WPARAM keys = 0) {
        POINT screen{clientPx.x, clientPx.y};
        ClientToScreen(window->GetHWND(), &screen);
        window->SendMessage(WM_MOUSEWHEEL, MAKEWPARAM(keys, delta), MAKELPARAM(screen.x, screen.y));
    }
    int Top() const { return list->GetScrollPos().y; }

    std::optional<TestWindow> window;
    CContainerUI* list = nullptr;
};

TEST_F(Scroll, OnlyWhatDoesNotFitScrolls) {
    Load(R"(<Window size="300,200"><VerticalLayout name="list" vscrollbar="true" hscrollbar="true">
        <Button name="b" height="200"/></VerticalLayout></Window>)");
    list->SetScrollPos({50, 50});
    EXPECT_EQ(list->GetScrollPos(), (Point{0, 0}));
    EXPECT_EQ(window->PaintManager().FindControl(POINT{295, 100}), &window->Find(L"b"));
    Wheel({50, 50}, -WHEEL_DELTA);
    EXPECT_TRUE(window->notifications.empty());
}

TEST_F(Scroll, PositionsStayWithinTheContent) {
    Load(kLayout);
    list->SetScrollPos({0, 100});
    EXPECT_EQ(window->Find(L"b0").GetPos(), (Rect{0, -100, 300, -40}));
    EXPECT_EQ(window->Count(L"scroll list"), 1);
    list->SetScrollPos({5, 100'000});
    EXPECT_EQ(list->GetScrollPos(), (Point{0, 400}));
    list->SetScrollPos({0, -1});
    EXPECT_EQ(Top(), 0);
    EXPECT_EQ(window->PaintManager().FindControl(POINT{10, 30}), &window->Find(L"b0"));
    list->SetScrollPos({0, 60});
    EXPECT_EQ(window->PaintManager().FindControl(POINT{10, 30}), &window->Find(L"b1"));
}

TEST_F(Scroll, LessContentPullsThePositionBack) {
    Load(kLayout);
    list->SetScrollPos({0, 400});
    list->RemoveAt(0);
    list->RemoveAt(0);
    window->PaintManager().UpdateLayout();
    EXPECT_EQ(Top(), 280);
}

TEST_F(Scroll, WheelOverAChildScrolls) {
    Load(kLayout);
    Wheel({50, 50}, -WHEEL_DELTA);
    EXPECT_EQ(Top(), 48);
    Wheel({50, 50}, -WHEEL_DELTA / 4);
    EXPECT_EQ(Top(), 60) << "a part of a notch";
    Wheel({50, 50}, 2 * WHEEL_DELTA);
    EXPECT_EQ(Top(), 0);
    window->Find(L"b0").SetEnabled(false);
    Wheel({50, 50}, -WHEEL_DELTA);
    EXPECT_EQ(Top(), 48) << "over a disabled control too";
}

TEST_F(Scroll, FineWheelsLoseNothing) {
    Load(kLayout);
    for (int i = 0; i < WHEEL_DELTA; ++i) {
        Wheel({50, 50}, -1);
    }
    EXPECT_EQ(Top(), 48) << "120 steps of 1 are one of 120";
    Wheel({50, 50}, -2);
    EXPECT_EQ(Top(), 48) << "96 of 120 parts of a pixel";
    Wheel({50, 50}, 1);
    EXPECT_EQ(Top(), 48) << "turned back: what was left is dropped";
    Wheel({50, 50}, 2);
    EXPECT_EQ(Top(), 47);
    Wheel({50, 50}, -3);
    EXPECT_EQ(Top(), 48);
}

TEST_F(Scroll, TheWheelTakesAsManyLinesAsTheUserWants) {
    Load(kLayout);
    UINT former = 0;
    SystemParametersInfoW(SPI_GETWHEELSCROLLLINES, 0, &former, 0);
    const auto topAfterANotchOf = [&](UINT lines) {
        list->SetScrollPos({});
        SystemParametersInfoW(SPI_SETWHEELSCROLLLINES, lines, nullptr, 0);
        Wheel({50, 50}, -WHEEL_DELTA);
        return Top();
    };
    EXPECT_EQ(topAfterANotchOf(1), 16);
    EXPECT_EQ(topAfterANotchOf(6), 96);
    EXPECT_EQ(topAfterANotchOf(WHEEL_PAGESCROLL), 200);
    EXPECT_EQ(topAfterANotchOf(100), 200) << "no more than what is seen";
    EXPECT_EQ(topAfterANotchOf(0), 0);
    SystemParametersInfoW(SPI_SETWHEELSCROLLLINES, former, nullptr, 0);
}

TEST_F(Scroll, AWheelSidewaysScrollsSideways) {
    Load(
        R"(<Window size="300,200"><HorizontalLayout name="list" hscrollbar="true" vscrollbar="true"><Button name="b0" width="500"/>
        <Button name="b1" width="500" height="600"/></HorizontalLayout></Window>)");
    POINT screen{50, 50};
    ClientToScreen(window->GetHWND(), &screen);
    const auto sideways = [&](int delta) {
        window->SendMessage(WM_MOUSEHWHEEL, MAKEWPARAM(0, delta), MAKELPARAM(screen.x, screen.y));
    };
    sideways(WHEEL_DELTA);
    EXPECT_EQ(list->GetScrollPos(), (Point{48, 0})) << "to the right";
    sideways(-WHEEL_DELTA / 2);
    EXPECT_EQ(list->GetScrollPos(), (Point{24, 0}));
}

TEST_F(Scroll, AWheelSidewaysMovesNoSlider) {
    Load(
        R"(<Window size="300,200"><VerticalLayout name="list"><Slider name="s" min="0" max="10" value="5"/></VerticalLayout></Window>)");
    POINT screen{50, 50};
    ClientToScreen(window->GetHWND(), &screen);
    window->SendMessage(WM_MOUSEHWHEEL, MAKEWPARAM(0, WHEEL_DELTA), MAKELPARAM(screen.x, screen.y));
    EXPECT_FALSE(window->Got(L"valuechanged s"));
    Wheel({50, 50}, WHEEL_DELTA);
    EXPECT_TRUE(window->Got(L"valuechanged s"));
}

TEST_F(Scroll, WheelGoesOnToTheOuterContainerAtTheEnd) {
    Load(
        R"(<Window size="300,200"><VerticalLayout name="list" vscrollbar="true"><VerticalLayout name="inner" height="100"
        vscrollbar="true"><Button height="140"/></VerticalLayout><Button height="300"/></VerticalLayout></Window>)");
    const auto& inner = window->Find<CContainerUI>(L"inner");
    Wheel({50, 20}, -WHEEL_DELTA);
    EXPECT_EQ(inner.GetScrollPos().y, 40);
    EXPECT_EQ(Top(), 0);
    Wheel({50, 20}, -WHEEL_DELTA);
    EXPECT_EQ(Top(), 48);
}

TEST_F(Scroll, ThumbIsDragged) {
    Load(kLayout);
    // The thumb: a third of 200. A way of 133 for 400.
    window->Mouse(WM_LBUTTONDOWN, {294, 30}, MK_LBUTTON);
    EXPECT_EQ(Top(), 0);
    EXPECT_EQ(window->PaintManager().GetCapture(), list);
    window->Mouse(WM_MOUSEMOVE, {294, 63}, MK_LBUTTON);
    EXPECT_NEAR(Top(), 99, 1);
    window->Mouse(WM_MOUSEMOVE, {100, 5000}, MK_LBUTTON);
    EXPECT_EQ(Top(), 400) << "also with the pointer far away";
    window->Mouse(WM_LBUTTONUP, {100, 5000});
    EXPECT_EQ(window->PaintManager().GetCapture(), nullptr);
    window->Mouse(WM_MOUSEMOVE, {294, 30});
    EXPECT_EQ(Top(), 400);
}

TEST_F(Scroll, BarsThatComeMoveAndGoAreRepainted) {
    Load(R"(<Window size="300,200" textcolor="#FF000000"><VerticalLayout name="list" vscrollbar="true">
        <Control name="grows" height="100"/></VerticalLayout></Window>)");
    SetWindowPos(window->GetHWND(), HWND_TOPMOST, 300, 300, 0, 0, SWP_NOSIZE);
    window->ShowWindow();
    const auto hasThumbAt = [&](int y) {
        PumpPending();
        const HDC dc = GetDC(window->GetHWND());
        const COLORREF color = GetPixel(dc, 294, y);
        ReleaseDC(window->GetHWND(), dc);
        return color != RGB(255, 255, 255);
    };
    EXPECT_FALSE(hasThumbAt(10));
    window->Find(L"grows").SetFixedHeight(800);
    EXPECT_TRUE(hasThumbAt(10));
    EXPECT_FALSE(hasThumbAt(190));
    list->SetScrollPos({0, 600});
    EXPECT_TRUE(hasThumbAt(190));
    EXPECT_FALSE(hasThumbAt(10));
    window->Find(L"grows").SetFixedHeight(1600);
    EXPECT_FALSE(hasThumbAt(190)) << "it has moved up and become shorter";
    window->Find(L"grows").SetFixedHeight(100);
    for (int y = 0; y < 200; y += 10) {
        EXPECT_FALSE(hasThumbAt(y));
    }
}

TEST_F(Scroll, ABarBelowTheTopIsUsedAsOneAtTheTop) {
    Load(R"(<Window size="300,300"><VerticalLayout><Control height="100"/><VerticalLayout name="list" vscrollbar="true">
        <Button height="600"/></VerticalLayout></VerticalLayout></Window>)");
    window->Mouse(WM_LBUTTONDOWN, {294, 130}, MK_LBUTTON);
    window->Mouse(WM_LBUTTONUP, {294, 130});
    EXPECT_EQ(Top(), 0) << "on the thumb";
    window->Mouse(WM_LBUTTONDOWN, {294, 290}, MK_LBUTTON);
    window->Mouse(WM_LBUTTONUP, {294, 290});
    EXPECT_EQ(Top(), 200) << "below it";
}

TEST_F(Scroll, ASidewaysThumbIsAsLongAsWhatIsSeen) {
    Load(R"(<Window size="300,200" bkcolor="#FFFFFFFF"><HorizontalLayout name="list" hscrollbar="true">
        <Control width="400"/></HorizontalLayout></Window>)");
    const auto thumb = [&] {
        const Picture picture = Render(*window, USER_DEFAULT_SCREEN_DPI);
        return picture.InkWithin({0, 0, 300, 200}, 0xFFFFFFFF);
    };
    EXPECT_NEAR(thumb().left, 0, 3);
    EXPECT_NEAR(thumb().right, 225, 3);
    list->SetScrollPos({100, 0});
    EXPECT_NEAR(thumb().left, 75, 3);
    EXPECT_NEAR(thumb().right, 300, 3);
}

TEST_F(Scroll, CaptureThatIsTakenAwayEndsTheDrag) {
    Load(kLayout);
    window->Mouse(WM_LBUTTONDOWN, {294, 30}, MK_LBUTTON);
    window->SendMessage(WM_CANCELMODE);
    window->Mouse(WM_MOUSEMOVE, {294, 63}, MK_LBUTTON);
    EXPECT_EQ(Top(), 0);
}

TEST_F(Scroll, ClicksBesideTheThumbTurnPages) {
    Load(kLayout);
    const auto click = [&](Point px) {
        window->Mouse(WM_LBUTTONDOWN, px, MK_LBUTTON);
        window->Mouse(WM_LBUTTONUP, px);
    };
    click({294, 190});
    EXPECT_EQ(Top(), 200);
    click({294, 190});
    EXPECT_EQ(Top(), 400);
    click({294, 5});
    EXPECT_EQ(Top(), 200);
    EXPECT_EQ(window->Count(L"click b0"), 0);
}

TEST_F(Scroll, KeysOfTheFocusedControlScroll) {
    Load(kLayout);
    window->PaintManager().SetFocus(&window->Find(L"b0"));
    window->Key(VK_NEXT);
    EXPECT_EQ(Top(), 200);
    window->Key(VK_PRIOR);
    EXPECT_EQ(Top(), 0);
    window->Key(VK_END);
    EXPECT_EQ(Top(), 400);
    window->Key(VK_UP);
    EXPECT_EQ(Top(), 352);
    window->Key(VK_HOME);
    EXPECT_EQ(Top(), 0);
    window->Key(VK_DOWN);
    EXPECT_EQ(Top(), 48);
}

TEST_F(Scroll, FocusByTabComesIntoView) {
    Load(kLayout);
    for (int i = 0; i < 5; ++i) {
        window->PaintManager().SetNextTabControl(true);
    }
    EXPECT_EQ(window->PaintManager().GetFocus(), &window->Find(L"b4"));
    EXPECT_EQ(Top(), 100) << "just enough: b4 ends at 300";
    window->PaintManager().SetFocus(&window->Find(L"b0"), true);
    EXPECT_EQ(Top(), 0);
    list->SetScrollPos({0, 30});
    window->Mouse(WM_LBUTTONDOWN, {50, 10}, MK_LBUTTON);
    EXPECT_EQ(Top(), 30) << "a click leaves the position";
    window->Mouse(WM_LBUTTONUP, {50, 10});
}

TEST_F(Scroll, WhatHasJustGrownIsBroughtIntoView) {
    Load(kLayout);
    CControlUI& last = window->Find(L"b9");
    window->Find(L"b0").SetFixedHeight(160);
    list->EnsureVisible(last);
    EXPECT_EQ(Top(), 500) << "the place that it has after the change";
}

TEST_F(Scroll, ATextThatScrollsCanHaveTheFocus) {
    Load(R"(<Window size="300,200"><VerticalLayout name="list" vscrollbar="true"><Label text="long" height="900"/>
        <Button name="b" visible="false" height="20"/></VerticalLayout></Window>)");
    EXPECT_TRUE(list->CanHaveFocus());
    window->PaintManager().SetNextTabControl(true);
    EXPECT_EQ(window->PaintManager().GetFocus(), list);
    window->Key(VK_NEXT);
    EXPECT_EQ(Top(), 200);
    window->Find(L"b").SetVisible(true);
    window->PaintManager().UpdateLayout();
    EXPECT_FALSE(list->CanHaveFocus()) << "the button has it now";
}

TEST_F(Scroll, FillChildrenAreAtLeastAsHighAsTheirContent) {
    Load(R"(<Window size="300,200"><VerticalLayout name="list" vscrollbar="true">
        <VerticalLayout name="a"><Control height="150"/></VerticalLayout>
        <VerticalLayout name="b"><Control height="90"/></VerticalLayout></VerticalLayout></Window>)");
    EXPECT_EQ(window->Find(L"a").GetPos().Height(), 150);
    EXPECT_EQ(window->Find(L"b").GetPos().Height(), 90);
    window->PaintManager().FindControl(L"a")->SetVisible(false);
    EXPECT_EQ(window->Find(L"b").GetPos().Height(), 200);
}

TEST_F(Scroll, SidewaysInBothDirectionsOfWriting) {
    constexpr char kRow[] = R"(<Window size="300,200"><HorizontalLayout name="list" hscrollbar="true">
        <Button name="a" width="200"/><Button name="b" width="200"/></HorizontalLayout></Window>)";
    Load(kRow);
    Wheel({50, 50}, -WHEEL_DELTA);
    EXPECT_EQ(list->GetScrollPos(), (Point{48, 0}));
    EXPECT_EQ(window->Find(L"a").GetPos().left, -48);
    window->PaintManager().SetFocus(&window->Find(L"b"), true);
    EXPECT_EQ(list->GetScrollPos().x, 100);

    ResourceFolder::Get().Write(L"values\\ar_SA\\strings.xml",
                                R"(<Strings language="ar_SA" direction="rtl"></Strings>)");
    ResourceFolder::Get().Write(L"values\\en_US\\strings.xml", R"(<Strings language="en_US"></Strings>)");
    UICulture::GetInstance()->SetValuesFolder(ResourceFolder::Get().Path() + L"values\\");
    UICulture::GetInstance()->SelectLanguage(L"ar_SA", true);
    Load(kRow);
    EXPECT_EQ(window->Find(L"a").GetPos().right, 300) << "the content begins on the right";
    Wheel({50, 50}, -WHEEL_DELTA);
    EXPECT_EQ(window->Find(L"a").GetPos().right, 348);
    window->PaintManager().SetFocus(&window->Find(L"b"), true);
    EXPECT_EQ(window->Find(L"b").GetPos().left, 0);
    // The thumb has come to the left end; dragged to the right it goes back to the start.
    window->Mouse(WM_LBUTTONDOWN, {20, 194}, MK_LBUTTON);
    window->Mouse(WM_MOUSEMOVE, {299, 194}, MK_LBUTTON);
    window->Mouse(WM_LBUTTONUP, {299, 194});
    EXPECT_EQ(list->GetScrollPos().x, 0);
    // The pixel at the right end is the first of its track.
    window->Mouse(WM_LBUTTONDOWN, {299, 194}, MK_LBUTTON);
    EXPECT_EQ(window->PaintManager().GetCapture(), list) << "it is the thumb's";
    window->Mouse(WM_LBUTTONUP, {299, 194});
    window.reset();
    UICulture::GetInstance()->SelectLanguage(L"en_US", true);
}

}  // namespace
}  // namespace DuiLib::Test
