// What a paint manager paints when, and what reaches the screen.
#include "DuiLib/ContainerUI.h"
#include "TestWindow.h"
#include "paint/Canvas.h"
#include "tests/support/ShapedWindows.h"

namespace DuiLib::Test {
namespace {

// Counts its paints and fills itself.
class Patch : public CControlUI {
  public:
    explicit Patch(DWORD argb) { SetBkColor(argb); }
    int paints = 0;

  protected:
    void PaintContent(Canvas&, const Rect& dirtyPx) override {
        ++paints;
        lastDirty = dirtyPx;
    }

  public:
    Rect lastDirty;
};

class WindowPainting : public testing::Test {
  protected:
    WindowPainting() {
        auto& root = window.Find<CContainerUI>(L"root");
        for (Patch** patch : {&left, &right}) {
            auto owned = std::make_unique<Patch>(patch == &left ? 0xFFFF0000 : 0xFF0000FF);
            *patch = owned.get();
            root.Add(std::move(owned));
        }
        SetWindowPos(window.GetHWND(), HWND_TOPMOST, 300, 300, 0, 0, SWP_NOSIZE);
        SetCursorPos(10, 10);
    }

    void Show() {
        window.ShowWindow();
        PumpPending();
        left->paints = right->paints = 0;
    }
    COLORREF ScreenPixel(Point px) {
        const HDC dc = GetDC(window.GetHWND());
        const COLORREF color = GetPixel(dc, px.x, px.y);
        ReleaseDC(window.GetHWND(), dc);
        return color;
    }

    TestWindow window{R"(<Window size="400,100" bordercolor="#FF00FF00"><HorizontalLayout name="root"/></Window>)"};
    Patch* left = nullptr;
    Patch* right = nullptr;
};

TEST_F(WindowPainting, OnlyWhatChangedIsPainted) {
    Show();
    left->SetBkColor(0xFFFFFF00);
    PumpPending();
    EXPECT_EQ(left->paints, 1);
    EXPECT_EQ(right->paints, 0);
    EXPECT_EQ(ScreenPixel({100, 50}), RGB(255, 255, 0));
    EXPECT_EQ(ScreenPixel({300, 50}), RGB(0, 0, 255));
    right->Invalidate();
    right->Invalidate();
    PumpPending();
    EXPECT_EQ(right->paints, 1);
}

TEST_F(WindowPainting, WhatIsUncoveredIsCopiedNotPainted) {
    Show();
    InvalidateRect(window.GetHWND(), nullptr, TRUE);
    PumpPending();
    EXPECT_EQ(left->paints, 0);
    EXPECT_EQ(ScreenPixel({100, 50}), RGB(255, 0, 0));
    EXPECT_EQ(ScreenPixel({0, 50}), RGB(0, 255, 0));  // the border
}

TEST_F(WindowPainting, PaintMessageOfTheProgramValidates) {
    Show();
    left->SetBkColor(0xFF123456);
    window.PaintManager().OnWM_PAINT();
    EXPECT_FALSE(GetUpdateRect(window.GetHWND(), nullptr, FALSE));
    EXPECT_EQ(ScreenPixel({100, 50}), RGB(0x12, 0x34, 0x56));
}

TEST_F(WindowPainting, AnArrangementAloneIsPaintedToo) {
    Show();
    left->SetFixedWidth(100);
    PumpPending();
    EXPECT_EQ(ScreenPixel({150, 50}), RGB(0, 0, 255));
    EXPECT_EQ(ScreenPixel({50, 50}), RGB(255, 0, 0));
    right->SetVisible(false);
    PumpPending();
    EXPECT_EQ(ScreenPixel({150, 50}), RGB(255, 255, 255));  // the window's own colour
}

TEST_F(WindowPainting, HiddenWindowPaintsWhenItIsShown) {
    PumpPending();
    EXPECT_EQ(left->paints, 0);
    Show();
    EXPECT_EQ(ScreenPixel({100, 50}), RGB(255, 0, 0));
}

TEST_F(WindowPainting, PrintsTheWholeWindowIntoAnotherContext) {
    const HDC screen = GetDC(nullptr);
    const HDC dc = CreateCompatibleDC(screen);
    const HBITMAP bitmap = CreateCompatibleBitmap(screen, 400, 100);
    const HGDIOBJ former = SelectObject(dc, bitmap);
    window.SendMessage(WM_PRINTCLIENT, reinterpret_cast<WPARAM>(dc), PRF_CLIENT);
    EXPECT_EQ(GetPixel(dc, 100, 50), RGB(255, 0, 0));
    EXPECT_EQ(GetPixel(dc, 300, 50), RGB(0, 0, 255));
    right->SetBkColor(0xFF010203);
    window.PaintManager().PaintTo(dc);
    EXPECT_EQ(GetPixel(dc, 300, 50), RGB(1, 2, 3));
    SelectObject(dc, former);
    DeleteObject(bitmap);
    DeleteDC(dc);
    ReleaseDC(nullptr, screen);
}

TEST_F(WindowPainting, ManyWindowsLeaveNoObjectsBehind) {
    constexpr int kWindows = 25;
    const auto round = [] {
        TestWindow other(R"(<Window size="300,100" roundcorner="8"><Font id="1" size="20"/><HorizontalLayout>
            <Button name="a" text="A" tooltip="tip" font="1"/><Button name="b" text="B"/></HorizontalLayout></Window>)");
        other.ShowWindow(true, false);
        PumpPending();
        other.Click(L"a");
        other.PaintManager().SetDPI(144);
        PumpPending();
    };
    const int kept = harness::RegionsKeptByTheSystem(kWindows);
    round();
    const int before = GdiObjectCount();
    ASSERT_GT(before, 0);
    for (int i = 0; i < kWindows; ++i) {
        round();
    }
    // A cache of the system may hold a few more.
    EXPECT_LE(GdiObjectCount(), before + kept + kWindows / 5);
}

}  // namespace
}  // namespace DuiLib::Test
