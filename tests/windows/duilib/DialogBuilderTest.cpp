// From layout files to trees of controls, and what broken files leave.
#include <cstdlib>

#include "DuiLib/DialogBuilder.h"

#include "DuiLib/ButtonUI.h"
#include "DuiLib/ContainerUI.h"
#include "DuiLib/Layouts.h"
#include "DuiLib/OptionUI.h"
#include "DuiLib/SliderUI.h"
#include "DuiLib/TextUI.h"
#include "TestWindow.h"

namespace DuiLib::Test {
namespace {

class DialogBuilder : public testing::Test {
  protected:
    std::unique_ptr<CControlUI> Build(std::string_view xml, IDialogBuilderCallback* callback = nullptr) {
        return CDialogBuilder().CreateFromText(xml, L"test.xml", callback, &manager);
    }

    LogWatch log;
    ResourceFolder& resources = ResourceFolder::Get();
    CPaintManagerUI manager;
};

TEST_F(DialogBuilder, MakesEveryClass) {
    for (const char* name : {"Control", "Container", "VerticalLayout", "HorizontalLayout", "TileLayout", "TabLayout",
                             "Label", "Text", "Button", "Option", "Progress", "Slider"}) {
        const auto control = Build(std::string("<") + name + " name=\"x\"/>");
        ASSERT_NE(control, nullptr) << name;
        EXPECT_EQ(control->GetClass(), std::wstring(name, name + strlen(name)));
        EXPECT_EQ(control->GetName(), L"x");
    }
    log.ExpectNone();
}

TEST_F(DialogBuilder, BuildsTheTreeInOrder) {
    const auto root = Build(R"(<?xml version="1.0" encoding="utf-8"?><!-- a page -->
        <VerticalLayout name="root"><Label name="a" text="&lt;&amp;Ä"/><HorizontalLayout name="b"><Button name="c"/>
        </HorizontalLayout></VerticalLayout>)");
    ASSERT_NE(root, nullptr);
    std::wstring names;
    root->Visit([&](CControlUI& control) {
        names += control.GetName() + L" ";
        return true;
    });
    EXPECT_EQ(names, L"root a b c ");
    EXPECT_EQ(root->FindControlByName(L"a")->GetText(), L"<&\u00C4");
    EXPECT_EQ(root->FindControlByName(L"c")->GetParent(), root->FindControlByName(L"b"));
    EXPECT_EQ(root->GetParent(), nullptr);
    EXPECT_EQ(root->FindControlByName(L""), nullptr);
    log.ExpectNone();
}

TEST_F(DialogBuilder, EveryAttributeOfEveryControl) {
    const auto root = Build(R"(<Container name="n" width="10" height="auto" minwidth="1" maxwidth="2" minheight="3"
        maxheight="4" padding="1,2,3,4" float="true" pos="5,6,7,8" align="center" visible="false" enabled="false" text="t"
        tooltip="tip" accname="acc" bkcolor="#FF010203" bordercolor="#FF000000" focusbordercolor="#FF000000"
        bordersize="1" borderround="4" bkimage="file='a.png' reverse='true'" IsNcHit="true" virtualwnd="Page"
        keyboard="true" mouse="false" cursor="hand" userdata="u" inset="1,1,1,1" childpadding="3" vscrollbar="true"
        hscrollbar="false" mirror="false"/>)");
    ASSERT_NE(root, nullptr);
    log.ExpectNone();
    EXPECT_EQ(root->GetWidth(), (LengthDip{LengthDip::Kind::kFixed, 10}));
    EXPECT_EQ(root->GetHeight().kind, LengthDip::Kind::kAuto);
    EXPECT_EQ(root->GetMinWidth(), 1);
    EXPECT_EQ(root->GetMaxWidth(), 2);
    EXPECT_EQ(root->GetMinHeight(), 3);
    EXPECT_EQ(root->GetMaxHeight(), 4);
    EXPECT_EQ(root->GetPadding(), (Rect{1, 2, 3, 4}));
    EXPECT_TRUE(root->IsFloat());
    EXPECT_EQ(root->GetFloatPos(), (Rect{5, 6, 7, 8}));
    EXPECT_EQ(root->GetAlign(), HAlign::kCenter);
    EXPECT_FALSE(root->IsVisible());
    EXPECT_FALSE(root->IsEnabled());
    EXPECT_EQ(root->GetText(), L"t");
    EXPECT_EQ(root->GetToolTip(), L"tip");
    EXPECT_EQ(root->GetAccessibleInfo().name, L"acc");
    EXPECT_EQ(root->GetBkColor(), 0xFF010203u);
    EXPECT_EQ(root->GetBkImage(), L"file='a.png' reverse='true'");
    EXPECT_TRUE(root->IsNcHit());
    EXPECT_EQ(root->GetVirtualWnd(), L"Page");
    EXPECT_EQ(root->GetUserData(), L"u");
    EXPECT_EQ(static_cast<CContainerUI&>(*root).GetInset(), (Rect{1, 1, 1, 1}));
    EXPECT_EQ(static_cast<CContainerUI&>(*root).GetChildPadding(), 3);
}

TEST_F(DialogBuilder, BadValuesAreLoggedWithFileAndLineAndPassedOver) {
    const auto root = Build(
        "<VerticalLayout>\n<Button name=\"a\" width=\"wide\"\n colour=\"red\" height=\"20\"/>\n"
        "<Bottun name=\"b\"/>\n<Label name=\"c\"><Button/></Label></VerticalLayout>");
    ASSERT_NE(root, nullptr);
    EXPECT_EQ(root->FindControlByName(L"a")->GetHeight().value, 20);
    EXPECT_EQ(root->FindControlByName(L"b"), nullptr);
    ASSERT_NE(root->FindControlByName(L"c"), nullptr);
    EXPECT_EQ(log.Failures().size(), 4u);
    EXPECT_TRUE(log.Has("test.xml, line 2: <Button>: bad value width=\"wide\"(CDialogBuilder::Create)"));
    EXPECT_TRUE(log.Has("test.xml, line 2: <Button> has no attribute colour(CDialogBuilder::Create)"));
    EXPECT_TRUE(log.Has("test.xml, line 4: unknown element <Bottun>(CDialogBuilder::Create)"));
    EXPECT_TRUE(log.Has("test.xml, line 5: <Label> cannot hold <Button>(CDialogBuilder::Create)"));
}

// Each of the values is wrong for its attribute: nothing changes, and one line is logged.
TEST_F(DialogBuilder, EveryAttributeRefusesNonsense) {
    for (const char* attribute : {"width",      "height",      "minwidth",     "maxwidth",    "minheight",
                                  "maxheight",  "padding",     "float",        "pos",         "align",
                                  "visible",    "enabled",     "bkcolor",      "bordercolor", "focusbordercolor",
                                  "bordersize", "borderround", "IsNcHit",      "keyboard",    "mouse",
                                  "cursor",     "inset",       "childpadding", "vscrollbar",  "hscrollbar",
                                  "mirror",     "columns",     "itemsize",     "rowpadding"}) {
        LogWatch watch;
        EXPECT_NE(Build(std::string("<TileLayout ") + attribute + "=\"nonsense\"/>"), nullptr);
        EXPECT_EQ(watch.Failures().size(), 1u) << attribute;
        EXPECT_TRUE(watch.Has(std::string("bad value ") + attribute));
    }
    for (const char* attribute : {"bkimage=\"file='\"", "width=\"-1\"", "maxheight=\"-1\"", "columns=\"-1\"",
                                  "itemsize=\"-1,5\"", "width=\"10000000\""}) {
        LogWatch watch;
        EXPECT_NE(Build(std::string("<TileLayout ") + attribute + "/>"), nullptr);
        EXPECT_EQ(watch.Failures().size(), 1u) << attribute;
    }
}

TEST_F(DialogBuilder, WindowAttributesFontsDefaultsAndStyles) {
    const auto root = Build(R"(<Window size="640,480" minsize="1,2" maxsize="3,4" roundcorner="8" bkcolor="#FF111111"
        bordercolor="#FF222222" default="ok" cancel="no" closeonescape="true" textcolor="#FF333333"
        disabledtextcolor="#FF444444" linkcolor="#FF555555" hotlinkcolor="#FF666666" focuscolor="#FF777777">
        <Font id="13" size="20" bold="true" default="true"/><Font id="23" face="Segoe UI" weight="600" italic="true" underline="true"/>
        <Default name="Button" value="height=&quot;32&quot; width='90'"/>
        <Style name="wide" value="width='200' text='IDS_X'"/>
        <VerticalLayout><Button name="a"/><Button name="b" style="wide"/><Button name="c" width="300" style="wide"/>
        </VerticalLayout></Window>)");
    ASSERT_NE(root, nullptr);
    log.ExpectNone();
    const WindowSpec& window = manager.GetWindowSpec();
    EXPECT_EQ(window.sizeDip, (Size{640, 480}));
    EXPECT_EQ(window.minSizeDip, (Size{1, 2}));
    EXPECT_EQ(window.maxSizeDip, (Size{3, 4}));
    EXPECT_EQ(window.roundCornerDip, 8);
    EXPECT_EQ(window.bkColor, 0xFF111111u);
    EXPECT_EQ(window.borderColor, 0xFF222222u);
    EXPECT_EQ(window.defaultButton, L"ok");
    EXPECT_EQ(window.cancelButton, L"no");
    EXPECT_TRUE(window.closeOnEscape);
    EXPECT_EQ(window.textColor, 0xFF333333u);
    EXPECT_EQ(window.disabledTextColor, 0xFF444444u);
    EXPECT_EQ(window.linkColor, 0xFF555555u);
    EXPECT_EQ(window.hotLinkColor, 0xFF666666u);
    EXPECT_EQ(window.focusColor, 0xFF777777u);

    LOGFONTW font{};
    GetObjectW(manager.GetFont(13), sizeof(font), &font);
    EXPECT_EQ(std::abs(font.lfHeight), 20);
    EXPECT_EQ(font.lfWeight, FW_BOLD);
    EXPECT_EQ(manager.GetFont(99), manager.GetFont(13)) << "the default font";
    GetObjectW(manager.GetFont(23), sizeof(font), &font);
    EXPECT_EQ(font.lfWeight, 600);
    EXPECT_TRUE(font.lfItalic && font.lfUnderline);

    const auto widthOf = [&](const wchar_t* name) { return root->FindControlByName(name)->GetWidth().value; };
    EXPECT_EQ(widthOf(L"a"), 90);
    EXPECT_EQ(widthOf(L"b"), 200);
    EXPECT_EQ(widthOf(L"c"), 300) << "the control's own word is the last";
    EXPECT_EQ(root->FindControlByName(L"c")->GetHeight().value, 32);
}

TEST_F(DialogBuilder, BrokenResourcesAreLogged) {
    const auto root = Build(
        "<VerticalLayout>\n<Font size=\"10\"/>\n<Font id=\"1\" size=\"0\" weight=\"x\"/>\n"
        "<Default name=\"Button\" value=\"width\"/>\n<Style value=\"\"/>\n"
        "<Button style=\"none\" name=\"a\"/></VerticalLayout>");
    ASSERT_NE(root, nullptr);
    EXPECT_NE(root->FindControlByName(L"a"), nullptr);
    EXPECT_EQ(log.Failures().size(), 6u);
    EXPECT_TRUE(log.Has("line 2: <Font> needs an id"));
    EXPECT_TRUE(log.Has("line 3: <Font>: bad value size=\"0\""));
    EXPECT_TRUE(log.Has("line 3: <Font>: bad value weight=\"x\""));
    EXPECT_TRUE(log.Has("line 4: <Default> needs"));
    EXPECT_TRUE(log.Has("line 5: <Style> needs"));
    EXPECT_TRUE(log.Has("line 6: unknown style \"none\""));
}

TEST_F(DialogBuilder, BrokenFilesGiveNothingButALine) {
    const std::string_view broken[] = {"",
                                       "  ",
                                       "text",
                                       "<Button",
                                       "<Button>",
                                       "<Button></Label>",
                                       "<Button width=1/>",
                                       "<Button/><Button/>",
                                       "<Label>text",
                                       "<Label><!-- ",
                                       "<Label><![CDATA[x",
                                       "<Label><?x ",
                                       "<Label a=\"",
                                       "<!DOCTYPE x [<!ENTITY e \"v\">]><Button text=\"&e;\"/>",
                                       "<Button text=\"&unknown;\"/>",
                                       "<Unknown/>",
                                       "<Window/>",
                                       "<Window><Unknown/></Window>",
                                       "<Include source=\"layout\\missing.xml\"/>",
                                       "<Include/>",
                                       std::string_view("<Button\0/>", 10)};
    for (const std::string_view xml : broken) {
        LogWatch watch;
        EXPECT_EQ(Build(xml), nullptr) << xml;
        EXPECT_GE(watch.Failures().size(), 1u) << xml;
        EXPECT_TRUE(watch.Has("(CDialogBuilder::Create)")) << xml;
    }
}

TEST_F(DialogBuilder, CommentsAnywhereAndTheirLines) {
    for (const std::string start :
         {"", "\n\n", "<?xml version='1.0'?>\n\n", "<?xml version=\"1.0\"\n encoding=\"utf-8\"?>\n", "<!-- a -->\n\n",
          "\n <!-- a\n --> ", "<?xml version='1.0'?>\n<!-- -->\n",
          "\xEF\xBB\xBF<?xml version='1.0' encoding='UTF-8' standalone='yes'?>\n\n"}) {
        LogWatch watch;
        EXPECT_NE(Build(start + "<Label x=\"1\"/> <!-- > --> \n<!-- b -->\n"), nullptr) << start;
        const bool atStart = start.empty();
        EXPECT_TRUE(watch.Has(atStart ? "line 1: <Label>" : "line 3: <Label>") || watch.Has("line 2: <Label>"))
            << start;
    }
}

// Not every system's reader refuses these; whatever it does, nothing breaks.
TEST_F(DialogBuilder, DoubtfulFilesAreReadOrLogged) {
    for (const std::string_view xml :
         {"<Button a=\"1\" a=\"2\"/>", "<Button text=\"\x01\"/>", "<Button text=\"\xFF\xFE\"/>",
          "<Button text=\"\xED\xA0\x80\"/>", "<a:Button/>", "<Button xmlns=\"x\"/>"}) {
        LogWatch watch;
        const auto control = Build(xml);
        const bool isTold = !watch.Failures().empty();
        EXPECT_TRUE(control || isTold) << xml;
    }
}

TEST_F(DialogBuilder, LimitsHold) {
    std::string deep, wide = "<Container>";
    for (int i = 0; i < 65; ++i) {
        deep += "<Container>";
    }
    for (int i = 0; i < 65; ++i) {
        deep += "</Container>";
    }
    EXPECT_EQ(Build(deep), nullptr);
    EXPECT_TRUE(log.Has("more than 64 levels"));
    EXPECT_NE(Build(deep.substr(11, deep.size() - 23)), nullptr) << "64 are fine";
    for (int i = 0; i < 10'000; ++i) {
        wide += "<Control/>";
    }
    EXPECT_EQ(Build(wide + "</Container>"), nullptr);
    EXPECT_TRUE(log.Has("more than 10000 elements"));
    EXPECT_EQ(Build("<Label text=\"" + std::string(1 << 20, 'x') + "\"/>"), nullptr);
    EXPECT_TRUE(log.Has("larger than 1 MiB"));
}

TEST_F(DialogBuilder, FilesOfTheResourceFolder) {
    resources.Write(L"layout\\page.xml", R"(<VerticalLayout><Include source="layout\part.xml"/></VerticalLayout>)");
    resources.Write(L"layout\\part.xml", "\xEF\xBB\xBF<Button name=\"part\"/>");
    const auto page = CDialogBuilder().Create(L"layout\\page.xml", nullptr, nullptr, &manager);
    ASSERT_NE(page, nullptr);
    EXPECT_NE(page->FindControlByName(L"part"), nullptr);
    EXPECT_NE(CDialogBuilder().Create(resources.Path() + L"layout\\part.xml", L"Button", nullptr, nullptr), nullptr);
    log.ExpectNone();

    EXPECT_EQ(CDialogBuilder().Create(L"layout\\part.xml", L"Window", nullptr, &manager), nullptr);
    EXPECT_TRUE(log.Has("layout\\part.xml, line 1: <Button> where <Window> is expected"));
    EXPECT_EQ(CDialogBuilder().Create(L"layout\\absent.xml", nullptr, nullptr, &manager), nullptr);
    EXPECT_TRUE(log.Has("layout\\absent.xml, line 0: cannot be opened, error 2"));
    EXPECT_EQ(CDialogBuilder().Create(L"layout", nullptr, nullptr, &manager), nullptr) << "a folder";
    EXPECT_TRUE(log.Has("layout, line 0: cannot be opened, error "));
}

TEST_F(DialogBuilder, AFileThatIncludesItselfEnds) {
    resources.Write(L"layout\\loop.xml",
                    R"(<Container><Include source="layout\loop.xml"/><Include source="layout\loop.xml"/></Container>)");
    EXPECT_NE(CDialogBuilder().Create(L"layout\\loop.xml", nullptr, nullptr, &manager), nullptr);
    EXPECT_TRUE(log.Has("too many includes within includes"));
}

TEST_F(DialogBuilder, TheProgramMakesItsOwnClasses) {
    class Special : public CContainerUI {};
    class Callback final : public IDialogBuilderCallback {
      public:
        std::unique_ptr<CControlUI> CreateControl(const std::wstring& className) override {
            return className == L"Special" ? std::make_unique<Special>() : nullptr;
        }
    } callback;
    const auto root = Build(R"(<Special name="s"><Button name="b"/></Special>)", &callback);
    ASSERT_NE(dynamic_cast<Special*>(root.get()), nullptr);
    EXPECT_NE(root->FindControlByName(L"b"), nullptr);
    EXPECT_EQ(Build("<Other/>", &callback), nullptr);
    EXPECT_TRUE(log.Has("unknown element <Other>"));
}

TEST_F(DialogBuilder, TextsThatAreKeysAreLookedUp) {
    class Texts final : public IQueryControlText {
      public:
        std::wstring QueryControlText(const std::wstring& key) override {
            return std::wstring(L"text of ").append(key);
        }
    } texts;
    manager.SetQueryControlText(&texts);
    const auto root = Build(R"(<Button name="IDS_N" text="IDS_A" tooltip="IDS_B" accname="IDS_C" userdata="IDS_D"/>)");
    ASSERT_NE(root, nullptr);
    EXPECT_EQ(root->GetText(), L"text of IDS_A");
    EXPECT_EQ(root->GetToolTip(), L"text of IDS_B");
    EXPECT_EQ(root->GetAccessibleInfo().name, L"text of IDS_C");
    EXPECT_EQ(root->GetName(), L"IDS_N");
    EXPECT_EQ(root->GetUserData(), L"IDS_D");
    manager.SetQueryControlText(nullptr);
}

TEST_F(DialogBuilder, AttributesAtRunTimeAreLoggedByTheControl) {
    CButtonUI button;
    button.SetName(L"ok");
    button.SetAttribute(L"width", L"120");
    EXPECT_EQ(button.GetWidth().value, 120);
    log.ExpectNone();
    button.SetAttribute(L"width", L"x");
    button.SetAttribute(L"wdith", L"1");
    EXPECT_TRUE(log.Has("bad value width=\"x\" of Button ok(CControlUI::SetAttribute)"));
    EXPECT_TRUE(log.Has("unknown attribute wdith=\"1\" of Button ok(CControlUI::SetAttribute)"));
}

}  // namespace
}  // namespace DuiLib::Test
