#include "windows/ToolTipWnd.h"

#include <fstream>
#include <iterator>
#include <regex>

#include "DuiLib/LabelUI.h"
#include "DuiLib/RenderEngine.h"
#include "tests/support/ImportHook.h"
#include "tests/windows/support/Screen.h"
#include "tests/windows/windows/WindowTests.h"
#include "windows/DelButtonToolTip.h"

namespace {

using testing::ElementsAre;

// A hint of the test's own: the program's two live as long as the process and know one window.
class OwnHint : public ToolTipWnd {
  public:
    explicit OwnHint(const wchar_t* layout = L"layout\\PixoraToolTip.xml") : ToolTipWnd(L"OWN_HINT"), layout_(layout) {}
    using ToolTipWnd::Prepare;

  protected:
    std::wstring GetSkinFile() const override { return layout_; }

  private:
    const wchar_t* const layout_;
};

class ToolTipWndTest : public ProgramTest {
  protected:
    ToolTipWndTest() { hint_.Prepare(&owner_.PaintManager()); }

    // In the order in which pages do it.
    void Show(DuiLib::CControlUI& anchor, int dx, int dy, const std::wstring& text) {
        hint_.SetAnchor(&anchor);
        hint_.SetToolTipText(text);
        hint_.SetPosition(dx, dy);
        hint_.Show(true);
    }
    bool IsShown() const { return IsWindowVisible(hint_.GetHWND()) != FALSE; }
    RECT Place() const {
        RECT place = {};
        GetWindowRect(hint_.GetHWND(), &place);
        return place;
    }
    int Width() const { return Place().right - Place().left; }
    int Height() const { return Place().bottom - Place().top; }

    OwnerWindow owner_;
    OwnHint hint_;
};

TEST_F(ToolTipWndTest, IsAPopupOfItsOwner) {
    const HWND window = hint_.GetHWND();
    wchar_t text[64] = {};
    GetClassNameW(window, text, 64);
    EXPECT_STREQ(text, L"Pixora ToolTip");
    GetWindowTextW(window, text, 64);
    EXPECT_STREQ(text, L"OWN_HINT");
    EXPECT_EQ(GetWindow(window, GW_OWNER), owner_.GetHWND());
    EXPECT_TRUE(GetWindowLongPtrW(window, GWL_STYLE) & WS_POPUP);
    EXPECT_FALSE(GetWindowLongPtrW(window, GWL_STYLE) & (WS_CAPTION | WS_CHILD));
    EXPECT_TRUE(GetWindowLongPtrW(window, GWL_EXSTYLE) & WS_EX_TOPMOST);
    EXPECT_FALSE(IsShown());
}

TEST_F(ToolTipWndTest, IsAsWideAsItsTextAndItsMargins) {
    hint_.SetToolTipText(L"Meeting room");
    DuiLib::CPaintManagerUI& manager = hint_.PaintManager();
    DuiLib::Rect rect;
    const int font = dynamic_cast<DuiLib::CLabelUI*>(manager.FindControl(L"tooltip_text"))->GetFont();
    EXPECT_EQ(font, 12);
    DuiLib::CRenderEngine::DrawText(manager.GetPaintDC(), &manager, rect, L"Meeting room", 0, font, DT_CALCRECT);
    ASSERT_GT(rect.Width(), 20);
    EXPECT_EQ(hint_.GetToolTipWidth(), rect.Width() + 60);

    Show(owner_.Control(L"minbtn"), 0, 0, L"Meeting room");
    EXPECT_EQ(Width(), rect.Width() + 60);
    EXPECT_EQ(Height(), 104);
}

TEST_F(ToolTipWndTest, LongerTextsAreWider) {
    hint_.SetToolTipText(L"City");
    const int city = hint_.GetToolTipWidth();
    hint_.SetToolTipText(L"City, and the sea behind it");
    EXPECT_GT(hint_.GetToolTipWidth(), city);
}

TEST_F(ToolTipWndTest, WithoutATextItIsSixtyWideAndAsHighAsEver) {
    Show(owner_.Control(L"minbtn"), 0, 0, L"");
    EXPECT_EQ(hint_.GetToolTipWidth(), 60);
    EXPECT_EQ(Width(), 60);
    EXPECT_EQ(Height(), 104);
}

TEST_F(ToolTipWndTest, IsCutToTheShapeThatItsLayoutDraws) {
    Show(owner_.Control(L"minbtn"), 0, 0, L"Meeting room");
    const DuiLib::Rect& place = hint_.PaintManager().FindControl(L"tooltip_bubble")->GetPos();
    std::ifstream file((ProgramFolder() + L"res\\layout\\PixoraToolTip.xml").c_str());
    const std::string layout{std::istreambuf_iterator<char>(file), {}};
    static const std::regex kRadius("name=\"tooltip_bubble\"[^>]*borderround=\"(\\d+)\"");
    std::smatch radius;
    ASSERT_TRUE(std::regex_search(layout, radius, kRadius));
    const int corner = 2 * std::stoi(radius[1]);
    const HRGN drawn = CreateRoundRectRgn(place.left, place.top, place.right + 1, place.bottom + 1, corner, corner);
    const HRGN shown = CreateRectRgn(0, 0, 0, 0);
    EXPECT_NE(GetWindowRgn(hint_.GetHWND(), shown), ERROR);
    EXPECT_TRUE(AreSameRegion(drawn, shown));
    DeleteObject(drawn);
    DeleteObject(shown);
}

TEST_F(ToolTipWndTest, StandsBesideItsAnchor) {
    RECT window = {};
    GetWindowRect(owner_.GetHWND(), &window);
    const DuiLib::Rect& anchor = owner_.Control(L"closebtn").GetPos();
    Show(owner_.Control(L"closebtn"), -18, 12, L"Delete");
    EXPECT_EQ(Place().left, window.left + anchor.left - 18);
    EXPECT_EQ(Place().top, window.top + anchor.top + 12);
}

TEST_F(ToolTipWndTest, WithoutAnAnchorItStaysWhereItWas) {
    Show(owner_.Control(L"closebtn"), 5, 7, L"Close");
    const RECT before = Place();
    hint_.Show(false);
    hint_.SetPosition(300, 300);
    hint_.Show(true);
    EXPECT_EQ(Place().left, before.left);
    EXPECT_EQ(Place().top, before.top);
}

TEST_F(ToolTipWndTest, ShownTwiceItDoesNotMove) {
    Show(owner_.Control(L"closebtn"), 5, 7, L"Close");
    const RECT before = Place();
    hint_.SetAnchor(&owner_.Control(L"minbtn"));
    hint_.SetPosition(50, 50);
    hint_.SetToolTipText(L"Something that is much longer");
    hint_.Show(true);
    const RECT after = Place();
    EXPECT_TRUE(EqualRect(&before, &after));
}

TEST_F(ToolTipWndTest, LeavesTheKeyboardToItsOwner) {
    ASSERT_EQ(GetFocus(), owner_.GetHWND());
    Show(owner_.Control(L"closebtn"), 5, 7, L"Close");
    EXPECT_EQ(GetFocus(), owner_.GetHWND());
    EXPECT_EQ(GetForegroundWindow(), owner_.GetHWND());
    SetFocus(nullptr);
    hint_.Show(false);
    EXPECT_EQ(GetFocus(), nullptr);
    Show(owner_.Control(L"closebtn"), 5, 7, L"Close");
    EXPECT_EQ(GetFocus(), owner_.GetHWND());
}

// --- scales

TEST_F(ToolTipWndTest, WithTheSameScaleThePopupStays) {
    const HWND before = hint_.GetHWND();
    hint_.Prepare(&owner_.PaintManager());
    hint_.Prepare(nullptr);
    EXPECT_EQ(hint_.GetHWND(), before);
}

TEST_F(ToolTipWndTest, OfAnotherScaleItIsMadeAgain) {
    hint_.SetToolTipText(L"Meeting room");
    const int width = hint_.GetToolTipWidth();
    const HWND before = hint_.GetHWND();
    owner_.PaintManager().SetDPI(192);
    EXPECT_EQ(hint_.GetHWND(), before);  // with the next request only
    hint_.Prepare(&owner_.PaintManager());
    EXPECT_NE(hint_.GetHWND(), before);
    EXPECT_FALSE(IsWindow(before));
    EXPECT_EQ(hint_.PaintManager().GetDPI(), 192);

    owner_.PaintManager().UpdateLayout();
    Show(owner_.Control(L"minbtn"), 0, 0, L"Meeting room");
    EXPECT_NEAR(hint_.GetToolTipWidth(), width, 3);  // units: the same text, but for the rounding of its letters
    EXPECT_EQ(Width(), hint_.GetToolTipWidth() * 2);
    EXPECT_EQ(Height(), 208);
    const HWND now = hint_.GetHWND();
    hint_.Prepare(&owner_.PaintManager());
    EXPECT_EQ(hint_.GetHWND(), now);
}

TEST_F(ToolTipWndTest, MadeAgainWhileShownItIsHidden) {
    Show(owner_.Control(L"minbtn"), 0, 0, L"Minimize");
    owner_.PaintManager().SetDPI(144);
    hint_.Prepare(&owner_.PaintManager());
    EXPECT_FALSE(IsShown());
}

TEST_F(ToolTipWndTest, MadeAgainWhileShownItHasNoAnchor) {
    Show(owner_.Control(L"minbtn"), 0, 0, L"Minimize");
    const RECT before = Place();
    owner_.PaintManager().SetDPI(144);
    hint_.Prepare(&owner_.PaintManager());
    hint_.SetPosition(300, 300);
    hint_.Show(true);
    EXPECT_EQ(Place().left, before.left);
    EXPECT_EQ(Place().top, before.top);
}

bool g_seenUncut = false;
int g_cuts = 0;

int WINAPI Cut(HWND window, HRGN region, BOOL) {
    ++g_cuts;
    g_seenUncut = g_seenUncut || IsWindowVisible(window);
    DeleteObject(region);
    return TRUE;
}

TEST_F(ToolTipWndTest, IsCutBeforeItIsSeen) {
    g_seenUncut = false;
    g_cuts = 0;
    const harness::ImportHook hook(nullptr, "SetWindowRgn", &Cut);
    Show(owner_.Control(L"minbtn"), 0, 0, L"Minimize");
    EXPECT_TRUE(IsShown());
    EXPECT_EQ(g_cuts, 1);
    EXPECT_FALSE(g_seenUncut);
}

TEST_F(ToolTipWndTest, WithoutAWindowTheKeyboardStays) {
    Expect("[L4] paintMgr nullptr(ToolTipWnd::Show)");
    DestroyWindow(hint_.GetHWND());
    SetFocus(owner_.GetHWND());
    hint_.Show(true);
    EXPECT_EQ(GetFocus(), owner_.GetHWND());
    hint_.Show(false);
}

TEST_F(ToolTipWndTest, GoneWithItsOwnersWindowItIsMadeAgain) {
    DestroyWindow(hint_.GetHWND());
    EXPECT_EQ(hint_.GetHWND(), nullptr);
    hint_.Prepare(&owner_.PaintManager());
    EXPECT_TRUE(IsWindow(hint_.GetHWND()));
}

TEST_F(ToolTipWndTest, TheFirstOwnerStays) {
    OwnerWindow second;
    second.PaintManager().SetDPI(192);
    hint_.Prepare(&second.PaintManager());
    // The popup belongs to the second window, the sizes still go by the first one's scale.
    EXPECT_EQ(GetWindow(hint_.GetHWND(), GW_OWNER), second.GetHWND());
    hint_.SetAnchor(&second.Control(L"minbtn"));
    hint_.SetToolTipText(L"");
    hint_.Show(true);
    EXPECT_EQ(Height(), 104);
}

// --- the mouse

TEST_F(ToolTipWndTest, HidesUnderThePointer) {
    Show(owner_.Control(L"closebtn"), 5, 60, L"Close");
    EXPECT_EQ(SendMessageW(hint_.GetHWND(), WM_MOUSEMOVE, 0, MAKELPARAM(3, 3)), 0);
    EXPECT_FALSE(IsShown());
}

TEST_F(ToolTipWndTest, ThePointerItselfHidesIt) {
    Show(owner_.Control(L"closebtn"), 5, 60, L"Close");
    const RECT place = Place();
    RECT bubble = {};  // what the region leaves of the window
    ASSERT_NE(GetWindowRgnBox(hint_.GetHWND(), &bubble), ERROR);
    Input::MoveTo(POINT{place.left + (bubble.left + bubble.right) / 2, place.top + (bubble.top + bubble.bottom) / 2});
    EXPECT_TRUE(Input::PumpUntil([this] { return !IsShown(); }));
}

TEST_F(ToolTipWndTest, LeftOntoItsAnchorItStays) {
    Show(owner_.Control(L"closebtn"), 5, 60, L"Close");
    Input::MoveTo(owner_.Control(L"closebtn"));
    SendMessageW(hint_.GetHWND(), WM_MOUSELEAVE, 0, 0);
    EXPECT_TRUE(IsShown());
}

TEST_F(ToolTipWndTest, LeftOntoAnythingElseItHides) {
    for (const wchar_t* elsewhere : {L"minbtn", L"title_bar", L"wnd_container"}) {
        Show(owner_.Control(L"closebtn"), 5, 160, L"Close");
        Input::MoveTo(owner_.Control(elsewhere));
        SendMessageW(hint_.GetHWND(), WM_MOUSELEAVE, 0, 0);
        EXPECT_FALSE(IsShown());
    }
    Show(owner_.Control(L"closebtn"), 5, 160, L"Close");
    Input::Park();
    SendMessageW(hint_.GetHWND(), WM_MOUSELEAVE, 0, 0);
    EXPECT_FALSE(IsShown());
}

TEST_F(ToolTipWndTest, WithoutAnAnchorItHidesWhereverItIsLeft) {
    hint_.SetToolTipText(L"");
    hint_.Show(true);
    Input::Park();
    SendMessageW(hint_.GetHWND(), WM_MOUSELEAVE, 0, 0);
    EXPECT_FALSE(IsShown());
}

TEST_F(ToolTipWndTest, HiddenItForgetsItsAnchor) {
    Show(owner_.Control(L"closebtn"), 5, 60, L"Close");
    hint_.Show(false);
    hint_.Show(true);
    Input::MoveTo(owner_.Control(L"closebtn"));
    SendMessageW(hint_.GetHWND(), WM_MOUSELEAVE, 0, 0);
    EXPECT_FALSE(IsShown());
}

TEST_F(ToolTipWndTest, TheLeaveGoesOnToTheBase) {
    PassedOnMessages passedOn(hint_.PaintManager());
    SendMessageW(hint_.GetHWND(), WM_MOUSELEAVE, 0, 0);
    EXPECT_EQ(passedOn.Count(WM_MOUSELEAVE), 1);
}

// --- what is missing

TEST_F(ToolTipWndTest, WithoutAWindowTextAndWidthFail) {
    OwnHint hint;
    hint.Prepare(nullptr);
    Expect("[L4] paintMgr nullptr(ToolTipWnd::SetToolTipText)");
    Expect("[L4] paintMgr nullptr(ToolTipWnd::GetToolTipWidth)");
    hint.SetToolTipText(L"nobody sees it");
    EXPECT_EQ(hint.GetToolTipWidth(), 0);
    hint.Show(false);
    hint.SetPosition(1, 1);
    EXPECT_THAT(LogOf("ToolTipWnd::SetToolTipText"), ElementsAre("[L4] paintMgr nullptr(ToolTipWnd::SetToolTipText)"));
    EXPECT_THAT(LogOf("ToolTipWnd::GetToolTipWidth"),
                ElementsAre("[L4] paintMgr nullptr(ToolTipWnd::GetToolTipWidth)"));
}

TEST_F(ToolTipWndTest, WithoutItsTextControlItIsSixtyWide) {
    OwnHint hint(L"layout\\Pixora.xml");
    hint.Prepare(&owner_.PaintManager());
    Expect("[L4] exist control nullptr(ToolTipWnd::SetToolTipText)");
    Expect("[L4] exist control nullptr(ToolTipWnd::GetToolTipWidth)");
    hint.SetToolTipText(L"nobody sees it");
    EXPECT_EQ(hint.GetToolTipWidth(), 0);
    EXPECT_THAT(LogOf("ToolTipWnd::SetToolTipText"),
                ElementsAre("[L4] exist control nullptr(ToolTipWnd::SetToolTipText)"));
    EXPECT_THAT(LogOf("ToolTipWnd::GetToolTipWidth"),
                ElementsAre("[L4] exist control nullptr(ToolTipWnd::GetToolTipWidth)"));
    hint.SetAnchor(&owner_.Control(L"minbtn"));
    hint.Show(true);
    RECT place = {};
    GetWindowRect(hint.GetHWND(), &place);
    EXPECT_EQ(place.right - place.left, 60);
    EXPECT_EQ(place.bottom - place.top, 104);
}

// --- the program's two

TEST_F(MainWindowTest, TheProgramsHintsAreTwoPopups) {
    ToolTipWnd& hint = ToolTipWnd::GetInstance(nullptr);
    EXPECT_EQ(&ToolTipWnd::GetInstance(&Manager()), &hint);
    DelButtonToolTip& deleteHint = DelButtonToolTip::GetInstance(&Manager());
    EXPECT_EQ(&DelButtonToolTip::GetInstance(nullptr), &deleteHint);
    EXPECT_NE(static_cast<ToolTipWnd*>(&deleteHint), &hint);
    EXPECT_NE(hint.GetHWND(), deleteHint.GetHWND());
    wchar_t text[64] = {};
    GetClassNameW(deleteHint.GetHWND(), text, 64);
    EXPECT_STREQ(text, L"Pixora ToolTip");
    GetWindowTextW(deleteHint.GetHWND(), text, 64);
    EXPECT_STREQ(text, L"CUSTOM_DEL_TOOL_TIP_CLASS");
    EXPECT_EQ(Window().GetHint(PageHost::Hint::kOption), static_cast<HintWindow*>(&hint));
    EXPECT_EQ(Window().GetHint(PageHost::Hint::kDeleteButton), static_cast<HintWindow*>(&deleteHint));
}

}  // namespace
