// Every window at every scale and with larger texts: no text is cut, and nothing lies outside what holds it. In the
// language that the system gives to the process; it is started once for each.
#include <iterator>
#include <set>

#include "DuiLib/ButtonUI.h"
#include "DuiLib/ContainerUI.h"
#include "DuiLib/LabelUI.h"
#include "DuiLib/TextUI.h"
#include "DuiLib/UICulture.h"
#include "suite/product/SystemEnvironment.h"
#include "tests/support/FakeLook.h"
#include "tests/support/FakeScreens.h"
#include "tests/windows/windows/WindowTests.h"
#include "windows/DelDoubleCheckPage.h"
#include "windows/MessageTexts.h"
#include "windows/PxDialogWnd.h"
#include "windows/SimpleMessageBox.h"
#include "windows/ToolTipWnd.h"

namespace {

using testing::IsEmpty;

// A DPI, and the size of text that the user chose, in percent. The usual size comes first: windows grow with larger
// ones.
struct Setting {
    int dpi;
    int percent;
};
constexpr Setting kSettings[] = {{96, 100},  {72, 100},  {108, 100}, {120, 100}, {144, 100}, {156, 100},
                                 {192, 100}, {288, 100}, {96, 150},  {96, 225},  {192, 225}};

std::ostream& operator<<(std::ostream& out, const Setting& setting) {
    return out << setting.dpi << " dpi, text " << setting.percent << " %";
}

constexpr int kUnlimitedPx = 100000;

// Opens the doors that only a label's own classes have.
class Label : public DuiLib::CLabelUI {
  public:
    using CLabelUI::MeasureContent;
};

void Rescale(DuiLib::CPaintManagerUI& manager, HWND window, int dpi) {
    RECT place = {};
    GetWindowRect(window, &place);
    const int before = manager.GetDPI();
    place.right = place.left + MulDiv(place.right - place.left, dpi, before);
    place.bottom = place.top + MulDiv(place.bottom - place.top, dpi, before);
    SendMessageW(window, WM_DPICHANGED, MAKEWPARAM(dpi, dpi), reinterpret_cast<LPARAM>(&place));
    manager.UpdateLayout();
}

std::string Describe(const DuiLib::CControlUI& control) {
    const std::wstring text = control.GetName() + L" \"" + control.GetText() + L"\"";
    std::string narrow(text.size() * 4, '\0');
    narrow.resize(static_cast<std::size_t>(WideCharToMultiByte(CP_UTF8, 0, text.c_str(), static_cast<int>(text.size()),
                                                               narrow.data(), static_cast<int>(narrow.size()), nullptr,
                                                               nullptr)));
    return narrow;
}

// What is wrong in that tree, one line each.
class Inspector {
  public:
    std::vector<std::string> Inspect(DuiLib::CControlUI& root) {
        root.Visit([this](DuiLib::CControlUI& control) {
            if (control.IsShown()) {
                CheckText(control);
                CheckPlace(control);
            }
            return true;
        });
        return found_;
    }

  private:
    void CheckText(DuiLib::CControlUI& control) {
        auto* label = dynamic_cast<DuiLib::CLabelUI*>(&control);
        if (!label || label->GetText().empty())
            return;
        const DuiLib::Rect& place = label->GetPos();
        const DuiLib::Size wanted = (label->*&Label::MeasureContent)({place.Width(), kUnlimitedPx});
        // Widths that follow a text are kept in 96-DPI units; at 300 % that may be short by the empty pixel at its end.
        if (wanted.cx > place.Width() + 1 || wanted.cy > place.Height()) {
            found_.push_back("cut: " + Describe(control) + " wants " + std::to_string(wanted.cx) + "x" +
                             std::to_string(wanted.cy) + ", has " + std::to_string(place.Width()) + "x" +
                             std::to_string(place.Height()));
        }
    }

    void CheckPlace(DuiLib::CControlUI& control) {
        const DuiLib::CContainerUI* parent = control.GetParent();
        if (!parent)
            return;
        const DuiLib::Rect& inner = control.GetPos();
        const DuiLib::Rect& outer = parent->GetPos();
        const bool scrolls = Scrolls(*parent);
        if (inner.left < outer.left || inner.right > outer.right ||
            (!scrolls && (inner.top < outer.top || inner.bottom > outer.bottom))) {
            found_.push_back("outside: " + Describe(control) + " of class " + Narrow(control.GetClass()) + " in " +
                             Describe(*parent));
        }
    }

    // The column of the effects is longer than its place. With larger texts there are more that can be scrolled, which
    // at the usual size hold what they hold.
    static bool Scrolls(const DuiLib::CContainerUI& container) {
        static const std::set<std::wstring> others = {L"preview_details",
                                                      L"message",
                                                      L"message_text",
                                                      L"custom_background_container_text",
                                                      L"correct_sight_container_text",
                                                      L"focus_person_container_text"};
        const bool large = DuiLib::UITheme::GetInstance()->GetTextPercent() > 100;
        return container.GetName() == L"effects" || (large && others.contains(container.GetName()));
    }

    static std::string Narrow(const std::wstring& text) { return {text.begin(), text.end()}; }

    std::vector<std::string> found_;
};

std::vector<std::string> Inspect(DuiLib::CPaintManagerUI& manager) {
    return Inspector().Inspect(*manager.GetRoot());
}

// Of a line that is as wide in no two faces.
int WidthIn(const wchar_t* face) {
    constexpr wchar_t kLine[] = L"The quick brown fox jumps over the lazy dog, 0123456789";
    const HDC screen = GetDC(nullptr);
    const HFONT font = CreateFontW(-100, 0, 0, 0, FW_NORMAL, FALSE, FALSE, FALSE, DEFAULT_CHARSET, OUT_DEFAULT_PRECIS,
                                   CLIP_DEFAULT_PRECIS, DEFAULT_QUALITY, DEFAULT_PITCH, face);
    const HGDIOBJ before = SelectObject(screen, font);
    SIZE size = {};
    GetTextExtentPoint32W(screen, kLine, static_cast<int>(std::size(kLine)) - 1, &size);
    SelectObject(screen, before);
    DeleteObject(font);
    ReleaseDC(nullptr, screen);
    return size.cx;
}

class TextsFitTest : public MainWindowTest {
  protected:
    void SetUp() override {
        MainWindowTest::SetUp();
        wchar_t expected[16] = {};
        if (GetEnvironmentVariableW(L"EXPECTED_LANGUAGE", expected, 16) > 0) {
            ASSERT_EQ(SystemEnvironment::GetCurrentUserLanguage(), expected);
        }
        // The face that stands for that of Windows.
        wchar_t face[LF_FACESIZE] = {};
        if (GetEnvironmentVariableW(L"EXPECTED_FACE", face, LF_FACESIZE) > 0) {
            ASSERT_EQ(WidthIn(L"Segoe UI"), WidthIn(face));
        }
    }
    void TearDown() override {
        look_.textScaleFactor.reset();
        DuiLib::UITheme::GetInstance()->Reread();
        MainWindowTest::TearDown();
    }
    static std::wstring Text(const wchar_t* key) { return DuiLib::UICulture::GetInstance()->GetString(key); }
    // Looks at the window with each setting.
    void InspectAll(DuiLib::WindowImplBase& window, const std::function<void()>& prepare = {}) {
        for (const Setting& setting : kSettings) {
            look_.textScaleFactor = setting.percent;
            DuiLib::UITheme::GetInstance()->Reread();
            Rescale(window.PaintManager(), window.GetHWND(), setting.dpi);
            if (prepare) {
                prepare();
                window.PaintManager().UpdateLayout();
            }
            EXPECT_THAT(Inspect(window.PaintManager()), IsEmpty()) << setting;
        }
    }

    // Large enough for all of them.
    harness::FakeScreens screens_{{{{0, 0, 3840, 2160}, {0, 0, 3840, 2160}, 96}}};
    harness::FakeLook look_;
};

TEST_F(TextsFitTest, OnTheHomePage) {
    Write(L"lumi_camera_beauty_person", 1);
    ASSERT_TRUE(Input::PumpUntil([] { return Control(L"slider_smooth").IsShown(); }));
    InspectAll(Window());
}

TEST_F(TextsFitTest, OnTheIntroduction) {
    Manager().SendNotify(&Control(L"show_detail_btn"), DuiLib::NotifyType::kClick);
    for (const wchar_t* tab : {L"custom_background_option", L"correct_sight_option", L"focus_person_option"}) {
        InspectAll(Window(), [&] { Control<DuiLib::CButtonUI>(tab).Activate(); });
    }
}

TEST_F(TextsFitTest, InTheMessageBoxes) {
    using GlobalUtils::MessageBoxKind;
    for (const MessageBoxKind kind :
         {MessageBoxKind::kFileUnreadable, MessageBoxKind::kBackgroundGone, MessageBoxKind::kCameraUnavailable,
          MessageBoxKind::kImageTooLarge, MessageBoxKind::kVideoTooLarge, MessageBoxKind::kAlgorithmNotReady,
          MessageBoxKind::kBackgroundNotSaved}) {
        SimpleMessageBox box(&Manager());
        box.SetContent(Text(MessageTextKey(kind)));
        InspectAll(box);
    }
}

// The window that stands in the place of the settings.
TEST_F(TextsFitTest, InTheMessageWindow) {
    for (const bool html : {false, true}) {
        {
            PxDialogWnd dialog;
            dialog.Run(GetModuleHandleW(nullptr));
            DuiLib::CControlUI* const content = dialog.PaintManager().FindControl(L"msgbox_content");
            ASSERT_TRUE(content);
            if (html)
                dialog.UseHtmlMessage();
            content->SetText(Text(html ? L"IDS_LUMI_FUNCTION_UNAVAILABLE" : L"IDS_LUMI_DRIVER_BROKEN"));
            InspectAll(dialog);
        }
        Input::TakeQuit();
    }
}

// The inspector itself: a text that is too long for its place is found in each of the windows' ways to show one.
TEST_F(TextsFitTest, ATextThatIsCutIsFound) {
    PxDialogWnd dialog;
    dialog.Run(GetModuleHandleW(nullptr));
    DuiLib::CControlUI* const content = dialog.PaintManager().FindControl(L"title_text");
    ASSERT_TRUE(content);
    std::wstring text;
    for (int i = 0; i < 200; ++i)
        text += L"more and more ";
    content->SetText(text);
    dialog.PaintManager().UpdateLayout();
    EXPECT_THAT(Inspect(dialog.PaintManager()), testing::Contains(testing::StartsWith("cut: title_text")));
    DestroyWindow(dialog.GetHWND());
    Input::TakeQuit();
}

TEST_F(TextsFitTest, InTheQuestionAndTheNotice) {
    for (const bool notice : {false, true}) {
        DelDoubleCheckPage box(&Manager());
        if (notice)
            box.SetMaxLimitText(Text(L"IDS_LUMI_OVER_MAX_LIMIT"));
        InspectAll(box);
    }
}

TEST_F(TextsFitTest, InTheHints) {
    ToolTipWnd& hint = ToolTipWnd::GetInstance(&Manager());
    for (const wchar_t* key : {L"IDS_LUMI_CAMERA_CUSTOM", L"IDS_LUMI_CAMERA_WALLPAPER", L"IDS_LUMI_CAMERA_NATURE"}) {
        for (const int percent : {100, 150, 225}) {
            look_.textScaleFactor = percent;
            DuiLib::UITheme::GetInstance()->Reread();
            hint.SetAnchor(&Control(L"custom_background_btn"));
            hint.SetPosition(0, 0);
            hint.SetToolTipText(Text(key));
            hint.Show(true);
            EXPECT_THAT(Inspect(hint.PaintManager()), IsEmpty()) << percent;
            hint.Show(false);
        }
    }
}

}  // namespace
