// Where the layouts place their children.
#include "DuiLib/Layouts.h"
#include "DuiLib/UICulture.h"
#include "TestWindow.h"
#include "tests/support/FakeLook.h"

namespace DuiLib {
// In failure messages.
void PrintTo(const Rect& px, std::ostream* out) {
    *out << '{' << px.left << ',' << px.top << ',' << px.right << ',' << px.bottom << '}';
}
}  // namespace DuiLib

namespace DuiLib::Test {
namespace {

class Layout : public testing::Test {
  protected:
    // A tree of 400 × 300 units.
    void Load(const std::string& content) { window.emplace(R"(<Window size="400,300">)" + content + "</Window>"); }
    Rect Pos(const wchar_t* name) { return window->Find(name).GetPos(); }

    std::optional<TestWindow> window;
};

TEST_F(Layout, ContainerLetsItsChildrenFillItsInside) {
    Load(R"(<Container name="c" inset="1,2,3,4">
        <Control name="fill"/><Control name="padded" padding="10,20,30,40"/>
        <Control name="fixed" width="50" height="40"/>
        <Control name="centred" width="50" height="40" align="center"/>
        <Control name="right" width="50" height="40" align="right" padding="0,0,5,0"/>
    </Container>)");
    EXPECT_EQ(Pos(L"c"), (Rect{0, 0, 400, 300}));
    EXPECT_EQ(Pos(L"fill"), (Rect{1, 2, 397, 296}));
    EXPECT_EQ(Pos(L"padded"), (Rect{11, 22, 367, 256}));
    EXPECT_EQ(Pos(L"fixed"), (Rect{1, 2, 51, 42}));
    EXPECT_EQ(Pos(L"centred"), (Rect{174, 2, 224, 42}));
    EXPECT_EQ(Pos(L"right"), (Rect{342, 2, 392, 42}));
}

TEST_F(Layout, VerticalSharesTheRestAmongFill) {
    Load(R"(<VerticalLayout inset="10,10,10,10" childpadding="5">
        <Control name="a" height="30"/><Control name="b"/><Control name="c" padding="1,2,3,4"/>
        <Control name="d" height="30" width="100" align="right"/>
    </VerticalLayout>)");
    // 280 high inside, 60 fixed, 15 gaps, 6 padding: 199 for two.
    EXPECT_EQ(Pos(L"a"), (Rect{10, 10, 390, 40}));
    EXPECT_EQ(Pos(L"b"), (Rect{10, 45, 390, 145}));
    EXPECT_EQ(Pos(L"c"), (Rect{11, 152, 387, 251}));
    EXPECT_EQ(Pos(L"d"), (Rect{290, 260, 390, 290}));
}

TEST_F(Layout, HorizontalPlacesLowChildrenByValign) {
    for (const auto& [valign, top] :
         std::vector<std::pair<std::string, int>>{{"top", 3}, {"center", 136}, {"bottom", 269}}) {
        Load(R"(<HorizontalLayout valign=")" + valign + R"("><Control name="a" width="100"/>
            <Control name="b" height="20" padding="0,3,0,11"/><Control name="c" width="50" maxheight="100"/></HorizontalLayout>)");
        EXPECT_EQ(Pos(L"a"), (Rect{0, 0, 100, 300}));
        EXPECT_EQ(Pos(L"b").left, 100);
        EXPECT_EQ(Pos(L"b").right, 350);
        EXPECT_EQ(Pos(L"b").top, valign == "center" ? 3 + (286 - 20) / 2 : top) << valign;
        EXPECT_EQ(Pos(L"b").Height(), 20);
        EXPECT_EQ(Pos(L"c").Height(), 100);
    }
}

TEST_F(Layout, MinimaAndMaximaHold) {
    Load(R"(<HorizontalLayout><Control name="a" maxwidth="50"/><Control name="b" minwidth="300"/><Control name="c"/>
        </HorizontalLayout>)");
    EXPECT_EQ(Pos(L"a"), (Rect{0, 0, 50, 300}));
    EXPECT_EQ(Pos(L"b"), (Rect{50, 0, 350, 300}));
    EXPECT_EQ(Pos(L"c"), (Rect{350, 0, 400, 300}));
}

TEST_F(Layout, AutoFollowsTheContent) {
    Load(R"(<VerticalLayout><VerticalLayout name="card" height="auto" width="auto" inset="4,4,4,4" childpadding="2">
            <Control height="20" width="70"/><Control height="30" width="60" padding="5,0,5,0"/>
        </VerticalLayout><Control name="rest"/></VerticalLayout>)");
    EXPECT_EQ(Pos(L"card"), (Rect{0, 0, 78, 60}));
    EXPECT_EQ(Pos(L"rest"), (Rect{0, 60, 400, 300}));
}

TEST_F(Layout, WrappedTextIsAsHighAsItsWidthAsksFor) {
    Load(R"(<VerticalLayout><HorizontalLayout name="row" height="auto"><Control width="150"/>
        <Label name="text" height="auto" wordwrap="true"
            text="A sentence that is certainly too long for the place that it has between its neighbours here."/>
        <Control width="150"/></HorizontalLayout><Control name="rest"/></VerticalLayout>)");
    const int high = Pos(L"row").Height();
    EXPECT_EQ(Pos(L"text").Height(), high);
    EXPECT_EQ(Pos(L"rest").top, high);
    // With the whole width it needs fewer lines.
    window->Find<CContainerUI>(L"row").RemoveAt(0);
    EXPECT_EQ(Pos(L"text").Width(), 250);
    EXPECT_LT(Pos(L"row").Height(), high);
}

TEST_F(Layout, AMaximumOfZeroTakesNoRoom) {
    Load(R"(<VerticalLayout childpadding="10"><Control name="a" height="50"/><VerticalLayout name="b" height="40"
        padding="0,7,0,7"><Button name="inner" height="20"/></VerticalLayout><Control name="c" height="50"/></VerticalLayout>)");
    EXPECT_EQ(Pos(L"c").top, 50 + 10 + 54 + 10);
    EXPECT_TRUE(window->Find(L"inner").IsShown());
    window->Find(L"b").SetMaxHeight(0);
    EXPECT_EQ(Pos(L"c").top, 60);
    EXPECT_FALSE(window->Find(L"inner").IsShown());
    EXPECT_FALSE(window->Find(L"inner").CanHaveFocus());
    EXPECT_EQ(window->PaintManager().FindControl(POINT{10, 65}), &window->Find(L"c"));
    window->Find(L"b").SetMaxHeight(40);
    EXPECT_EQ(Pos(L"c").top, 50 + 10 + 54 + 10);
}

TEST_F(Layout, HiddenChildrenTakeNoRoomAndGetNoPointer) {
    Load(R"(<VerticalLayout childpadding="10"><Control name="a" height="50" visible="false"/>
        <Control name="b" height="50"/></VerticalLayout>)");
    EXPECT_EQ(Pos(L"b").top, 0);
    window->Find(L"a").SetVisible(true);
    EXPECT_EQ(Pos(L"b").top, 60);
}

TEST_F(Layout, FloatingChildrenStandWhereTheySay) {
    Load(R"(<VerticalLayout inset="5,5,5,5"><Control name="a" height="50"/>
        <Control name="f" float="true" pos="300,20,380,60"/>
        <Control name="own" float="true" pos="30,40,0,0" width="16" height="18"/></VerticalLayout>)");
    EXPECT_EQ(Pos(L"a").top, 5);
    EXPECT_EQ(Pos(L"f"), (Rect{300, 20, 380, 60}));
    EXPECT_EQ(Pos(L"own"), (Rect{30, 40, 46, 58}));
    EXPECT_EQ(window->PaintManager().FindControl(POINT{310, 30}), &window->Find(L"f")) << "later children lie above";
}

TEST_F(Layout, TileFillsRowsOfEqualCells) {
    Load(R"(<TileLayout name="t" itemsize="60,48" childpadding="4" rowpadding="2" columns="5">
        <Control/><Control/><Control/><Control/><Control name="last"/><Control name="next"/>
        <Control name="cell" width="60" height="40" padding="0,10,0,0"/></TileLayout>)");
    EXPECT_EQ(Pos(L"last"), (Rect{256, 0, 316, 48}));
    EXPECT_EQ(Pos(L"next"), (Rect{0, 50, 60, 98}));
    EXPECT_EQ(Pos(L"cell"), (Rect{64, 60, 124, 100})) << "a fixed size is kept beyond the cell";
}

TEST_F(Layout, TileTakesAsManyColumnsAsFitAndTheLargestChildAsCell) {
    Load(R"(<VerticalLayout><TileLayout name="t" height="auto"><Control width="100" height="20"/>
        <Control width="80" height="30"/><Control name="c" width="50" height="10"/><Control/>
        <Control name="e" width="50" height="10"/></TileLayout><Control name="rest"/></VerticalLayout>)");
    EXPECT_EQ(Pos(L"c"), (Rect{200, 0, 250, 10}));
    EXPECT_EQ(Pos(L"e"), (Rect{0, 30, 50, 40}));
    EXPECT_EQ(Pos(L"rest").top, 60);
}

TEST_F(Layout, TilePutsAChildsPaddingIntoItsCell) {
    Load(R"(<VerticalLayout><TileLayout name="t" height="auto" columns="2" rowpadding="0" childpadding="6">
        <Control name="a" width="40" height="20" padding="1,2,4,8"/><Control name="b" width="40" height="20"/>
        <Control name="c" width="40" height="20"/></TileLayout><Control name="rest"/></VerticalLayout>)");
    EXPECT_EQ(Pos(L"a"), (Rect{1, 2, 41, 22}));
    EXPECT_EQ(Pos(L"b").left, 51);
    EXPECT_EQ(Pos(L"c").top, 30) << "no padding between the rows";
    EXPECT_EQ(Pos(L"rest").top, 60);
}

TEST_F(Layout, TileMeasuresWhatIsNotGiven) {
    Load(R"(<VerticalLayout><TileLayout height="auto" itemsize="60,0"><Control name="a" width="40" height="20"/>
        <Control name="b" width="40" height="1"/></TileLayout><TileLayout height="auto" itemsize="0,1">
        <Control width="40" height="20"/><Control name="c" width="30" height="20"/></TileLayout>
        <Control name="rest"/></VerticalLayout>)");
    EXPECT_EQ(Pos(L"b"), (Rect{60, 0, 100, 1}));
    EXPECT_EQ(Pos(L"c"), (Rect{40, 20, 70, 40}));
    EXPECT_EQ(Pos(L"rest").top, 21);
}

// What a text may be wide in its cell is what its padding leaves.
TEST_F(Layout, TileMeasuresATextWithinItsPadding) {
    Load(R"(<VerticalLayout><TileLayout height="auto" columns="4"><Label name="text" height="auto" wordwrap="true"
        padding="30,0,20,0" text="some words that need several lines"/></TileLayout>
        <Label name="alone" width="50" height="auto" wordwrap="true" text="some words that need several lines"/>
        </VerticalLayout>)");
    EXPECT_EQ(Pos(L"text").Width(), 50);
    EXPECT_EQ(Pos(L"text").Height(), Pos(L"alone").Height());
    EXPECT_EQ(Pos(L"alone").top, Pos(L"text").bottom);
}

TEST_F(Layout, TileSharesARowAmongFillCells) {
    Load(R"(<TileLayout columns="3" childpadding="5" ><Control name="a" height="20"/><Control name="b" height="20"/>
        <Control name="c" height="20"/></TileLayout>)");
    EXPECT_EQ(Pos(L"b"), (Rect{135, 0, 265, 20}));
}

TEST_F(Layout, NothingInAHiddenContainerIsUnderThePointer) {
    Load(
        R"(<VerticalLayout name="all"><VerticalLayout name="box"><Button name="b"/></VerticalLayout></VerticalLayout>)");
    const CControlUI& all = window->Find(L"all");
    const CControlUI& button = window->Find(L"b");
    CControlUI& box = window->Find(L"box");
    const auto under = [&] { return window->PaintManager().FindControl(POINT{50, 50}); };
    EXPECT_EQ(under(), &button);
    box.SetVisible(false);
    EXPECT_EQ(under(), &all) << "its button is where it was";
    box.SetVisible(true);
    box.SetAttribute(L"maxwidth", L"0");
    EXPECT_EQ(under(), &all) << "no room is left for it";
}

// The text gets what the fixed widths, the gaps and the paddings leave of 400, to a character.
TEST_F(Layout, ATextWrapsBesideFixedWidths) {
    std::string text;
    for (int i = 0; i < 200; ++i) {
        text += "i ";
    }
    Load(R"(<HorizontalLayout childpadding="20"><Label name="text" width="auto" height="auto" wordwrap="true" text=")" +
         text + R"("/><Control name="narrow" width="30" minwidth="60" padding="25,0,35,0"/>
         <Control name="fixed" width="90"/></HorizontalLayout>)");
    EXPECT_LE(Pos(L"text").Width(), 150);
    EXPECT_GE(Pos(L"text").Width(), 135);
    EXPECT_EQ(Pos(L"narrow").Width(), 60);
    EXPECT_EQ(Pos(L"fixed").Width(), 90);
    EXPECT_LE(Pos(L"fixed").right, 400);
}

TEST_F(Layout, TabShowsOneChild) {
    Load(R"(<TabLayout name="tabs" selectedid="1"><Container name="one"><Button name="in_one"/></Container>
        <Container name="two"/><Container name="three"/></TabLayout>)");
    auto& tabs = window->Find<CTabLayoutUI>(L"tabs");
    EXPECT_EQ(tabs.GetCurSel(), 1);
    EXPECT_TRUE(window->Find(L"two").IsShown());
    EXPECT_FALSE(window->Find(L"in_one").IsShown());
    EXPECT_TRUE(window->notifications.empty());

    EXPECT_TRUE(tabs.SelectItemByName(L"three"));
    EXPECT_TRUE(window->Find(L"three").IsShown());
    EXPECT_FALSE(window->Find(L"two").IsShown());
    EXPECT_TRUE(tabs.SelectItem(2)) << "it is selected";
    EXPECT_EQ(window->Count(L"tabselect tabs"), 1);
    EXPECT_FALSE(tabs.SelectItemByName(L"four"));
    EXPECT_FALSE(tabs.SelectItem(3));
    EXPECT_FALSE(tabs.SelectItem(static_cast<const CControlUI*>(nullptr)));
    EXPECT_EQ(tabs.GetCurSel(), 2);
}

TEST_F(Layout, TabKeepsItsChildWhenOthersComeAndGo) {
    Load(R"(<TabLayout name="tabs"><Container name="one"/><Container name="two"/></TabLayout>)");
    auto& tabs = window->Find<CTabLayoutUI>(L"tabs");
    EXPECT_EQ(tabs.GetCurSel(), 0);
    auto first = std::make_unique<CContainerUI>();
    first->SetName(L"zero");
    EXPECT_TRUE(tabs.AddAt(std::move(first), 0));
    EXPECT_EQ(tabs.GetCurSel(), 1);
    EXPECT_TRUE(window->Find(L"one").IsShown());
    EXPECT_FALSE(window->Find(L"zero").IsShown());
    EXPECT_TRUE(tabs.RemoveAt(0));
    EXPECT_EQ(tabs.GetCurSel(), 0);
    EXPECT_TRUE(tabs.Remove(&window->Find(L"one"))) << "its neighbour takes the place";
    EXPECT_TRUE(window->Find(L"two").IsShown());
    tabs.RemoveAll();
    EXPECT_EQ(tabs.GetCurSel(), -1);
    EXPECT_EQ(tabs.GetCount(), 0);
}

TEST_F(Layout, ChildrenAreInsertedAndRemovedByIndex) {
    Load(R"(<HorizontalLayout name="h"><Control name="a"/><Control name="b"/></HorizontalLayout>)");
    auto& row = window->Find<CContainerUI>(L"h");
    auto added = std::make_unique<CControlUI>();
    added->SetName(L"n");
    CControlUI* const pointer = added.get();
    EXPECT_FALSE(row.AddAt(std::make_unique<CControlUI>(), 3));
    EXPECT_FALSE(row.AddAt(std::make_unique<CControlUI>(), -1));
    EXPECT_FALSE(row.AddAt(nullptr, 0));
    EXPECT_TRUE(row.AddAt(std::move(added), 1));
    EXPECT_EQ(row.GetItemIndex(pointer), 1);
    EXPECT_EQ(row.GetItemAt(1), pointer);
    EXPECT_EQ(pointer->GetManager(), &window->PaintManager());
    EXPECT_EQ(pointer->GetParent(), &row);
    EXPECT_EQ(Pos(L"b").left, 267);
    EXPECT_EQ(window->PaintManager().FindControlById(pointer->GetId()), pointer);

    EXPECT_TRUE(row.Remove(pointer));
    EXPECT_EQ(window->PaintManager().FindControl(L"n"), nullptr);
    EXPECT_EQ(Pos(L"b").left, 200);
    EXPECT_FALSE(row.RemoveAt(2));
    EXPECT_FALSE(row.RemoveAt(-1));
    EXPECT_EQ(row.GetItemAt(2), nullptr);
    EXPECT_EQ(row.GetItemIndex(nullptr), -1);
}

TEST_F(Layout, SizesScaleWithTheDpi) {
    Load(R"(<VerticalLayout inset="10,10,10,10"><HorizontalLayout height="30"><Control name="a" width="33"/>
        <Control name="b"/></HorizontalLayout><Control/></VerticalLayout>)");
    for (const int dpi : {96, 120, 144, 192, 288}) {
        window->PaintManager().SetDPI(dpi);
        EXPECT_EQ(Pos(L"a"), (Rect{MulDiv(10, dpi, 96), MulDiv(10, dpi, 96), MulDiv(10, dpi, 96) + MulDiv(33, dpi, 96),
                                   MulDiv(10, dpi, 96) + MulDiv(30, dpi, 96)}))
            << dpi;
    }
}

// The program's gallery: five cells a row, the last one the add button.
TEST_F(Layout, AGroupGrowsByItsMinimumHeight) {
    Load(R"(<VerticalLayout vscrollbar="true"><VerticalLayout name="section" height="124"><Label height="60"/>
        <TileLayout name="group" columns="5" itemsize="60,48" minheight="64"/></VerticalLayout>
        <Control name="below" height="20"/></VerticalLayout>)");
    EXPECT_EQ(Pos(L"group").Height(), 64);
    window->Find(L"group").SetMinHeight(112);
    window->Find(L"section").SetAttribute(L"height", L"172");
    EXPECT_EQ(Pos(L"group"), (Rect{0, 60, 400, 172}));
    EXPECT_EQ(Pos(L"below").top, 172);
}

class RightToLeftLayout : public Layout {
  protected:
    RightToLeftLayout() {
        ResourceFolder::Get().Write(L"values\\ar_SA\\strings.xml",
                                    R"(<Strings language="ar_SA" direction="rtl"></Strings>)");
        ResourceFolder::Get().Write(L"values\\en_US\\strings.xml",
                                    R"(<Strings language="en_US" direction="ltr"></Strings>)");
        UICulture::GetInstance()->SetValuesFolder(ResourceFolder::Get().Path() + L"values\\");
        UICulture::GetInstance()->SelectLanguage(L"ar_SA", true);
    }
    ~RightToLeftLayout() override {
        window.reset();
        UICulture::GetInstance()->SelectLanguage(L"en_US", true);
    }
};

TEST_F(RightToLeftLayout, MirrorsPlacesWithinEachContainer) {
    ASSERT_TRUE(UICulture::GetInstance()->IsRightToLeft());
    Load(
        R"(<HorizontalLayout inset="10,0,20,0"><VerticalLayout name="a" width="100"><Control name="aa" width="30" height="10"/>
        <Control name="ar" width="30" height="10" align="right"/></VerticalLayout><Control name="b"/>
        <Control name="f" float="true" pos="1,2,11,22"/></HorizontalLayout>)");
    EXPECT_EQ(Pos(L"a"), (Rect{290, 0, 390, 300}));
    EXPECT_EQ(Pos(L"aa").right, 390);
    EXPECT_EQ(Pos(L"ar").left, 290);
    EXPECT_EQ(Pos(L"b"), (Rect{20, 0, 290, 300}));
    EXPECT_EQ(Pos(L"f"), (Rect{389, 2, 399, 22}));
}

TEST_F(RightToLeftLayout, TilesBeginOnTheRight) {
    Load(R"(<TileLayout columns="5" itemsize="60,48"><Control name="a"/><Control name="b"/></TileLayout>)");
    EXPECT_EQ(Pos(L"a"), (Rect{340, 0, 400, 48}));
    EXPECT_EQ(Pos(L"b"), (Rect{280, 0, 340, 48}));
}

TEST_F(RightToLeftLayout, AContainerCanKeepItsDirection) {
    Load(R"(<HorizontalLayout mirror="false" inset="10,0,20,0"><HorizontalLayout name="a" width="100">
        <Control name="aa" width="10"/></HorizontalLayout><Control name="b"/></HorizontalLayout>)");
    EXPECT_EQ(Pos(L"a").left, 10);
    EXPECT_EQ(Pos(L"aa").right, 110);
    EXPECT_EQ(Pos(L"b").right, 380);
}

// --- a larger size of text

class LargeText : public Layout {
  protected:
    void Choose(DWORD percent) {
        look.textScaleFactor = percent;
        harness::FakeLook::Tell(window->GetHWND());
    }
    harness::FakeLook look;
};

constexpr char kGrowing[] = R"(<VerticalLayout><Font id="0" size="20" default="true"/>
    <VerticalLayout name="grows" height="30" growheight="true"><Label name="text" text="A" height="auto"/>
        <Control name="rest"/></VerticalLayout>
    <VerticalLayout name="stays" height="30"><Label text="A" height="auto"/></VerticalLayout>
    <VerticalLayout name="limited" maxheight="30" height="auto" growheight="true"><Label text="A" height="auto"/>
        <Control height="25"/></VerticalLayout>
    <VerticalLayout name="gone" maxheight="0" height="20" growheight="true"><Label text="A" height="auto"/></VerticalLayout>
</VerticalLayout>)";

TEST_F(LargeText, GivenHeightsHoldAtTheUsualSize) {
    Load(kGrowing);
    window->Find(L"grows").SetFixedHeight(10);  // lower than its text
    EXPECT_EQ(Pos(L"grows").Height(), 10);
    EXPECT_EQ(Pos(L"limited").Height(), 30);
}

TEST_F(LargeText, HeightsThatGrowGiveTheContentItsRoom) {
    Load(kGrowing);
    Choose(225);
    const int text = Pos(L"text").Height();
    EXPECT_GE(text, 45);
    EXPECT_EQ(Pos(L"grows").Height(), text);
    EXPECT_EQ(Pos(L"stays").Height(), 30);
    EXPECT_EQ(Pos(L"limited").Height(), text + 25);
    EXPECT_FALSE(window->Find(L"gone").IsShown());
    EXPECT_EQ(Pos(L"stays").top, text);
    // What has room already stays as it is.
    window->Find(L"grows").SetFixedHeight(90);
    EXPECT_EQ(Pos(L"grows").Height(), 90);
    Choose(101);
    EXPECT_EQ(Pos(L"grows").Height(), 90);
    EXPECT_GT(Pos(L"limited").Height(), 30);
    Choose(100);
    EXPECT_EQ(Pos(L"limited").Height(), 30);
}

TEST_F(Layout, AStackStandsSideBySideWhereThereIsRoom) {
    Load(R"(<HorizontalLayout name="s" stack="true" childpadding="20" valign="top">
        <Control name="a" width="100" height="30"/><Control name="b" width="280" height="40"/></HorizontalLayout>)");
    EXPECT_EQ(Pos(L"a"), (Rect{0, 0, 100, 30}));
    EXPECT_EQ(Pos(L"b"), (Rect{120, 0, 400, 40}));
    window->Find(L"b").SetFixedWidth(281);
    EXPECT_EQ(Pos(L"a"), (Rect{0, 0, 100, 30}));
    EXPECT_EQ(Pos(L"b"), (Rect{0, 38, 281, 78}));  // 8 at most between them
    // Paddings count, hidden ones do not.
    window->Find(L"b").SetFixedWidth(270);
    EXPECT_EQ(Pos(L"b").top, 0);
    window->Find(L"a").SetPadding({5, 0, 6, 0});
    EXPECT_EQ(Pos(L"b").top, 38);
    window->Find(L"a").SetVisible(false);
    EXPECT_EQ(Pos(L"b"), (Rect{0, 0, 270, 40}));
    window->Find(L"s").SetAttribute(L"stack", L"false");
    window->Find(L"a").SetVisible(true);
    EXPECT_EQ(Pos(L"b").top, 0);
}

TEST_F(Layout, AStackIsAsHighAsItNeeds) {
    Load(R"(<VerticalLayout><HorizontalLayout name="s" stack="true" height="auto" childpadding="4" inset="10,0,10,0">
        <Control name="a" width="200" height="30"/><Control name="b" width="200" height="40"/></HorizontalLayout>
        <Control name="next" height="10"/></VerticalLayout>)");
    EXPECT_EQ(Pos(L"s"), (Rect{0, 0, 400, 74}));
    EXPECT_EQ(Pos(L"next").top, 74);
    window->Find(L"a").SetFixedWidth(150);
    EXPECT_EQ(Pos(L"s"), (Rect{0, 0, 400, 40}));
}

TEST_F(Layout, InAStackWhatFillsIsMeasuredByItsText) {
    Load(R"(<HorizontalLayout stack="true"><Font id="0" size="20" default="true"/>
        <Button name="a" text="Short" height="30"/><Button name="b" text="Short" height="30"/></HorizontalLayout>)");
    EXPECT_EQ(Pos(L"a"), (Rect{0, 0, 200, 30}));
    window->Find(L"b").SetText(L"A text that is longer than the half of the window's width");
    EXPECT_EQ(Pos(L"a"), (Rect{0, 0, 400, 30}));
    EXPECT_EQ(Pos(L"b"), (Rect{0, 30, 400, 60}));
}

}  // namespace
}  // namespace DuiLib::Test
