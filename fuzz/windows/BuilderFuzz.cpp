// Whole layouts: built, arranged at several scales, painted, and used by mouse and keyboard, in a window that is never
// shown. An input that begins with an odd byte, '<' excepted, chooses elements, attributes and values, so that what
// comes out is XML that the builder takes; any other is a layout file.
#include <windows.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "DuiLib/DialogBuilder.h"
#include "DuiLib/PaintManagerUI.h"
#include "fuzz/support/Input.h"
#include "fuzz/support/Require.h"

using namespace DuiLib;

namespace {

constexpr int kMostControls = 40;
constexpr int kMostLevels = 6;
constexpr int kFar = 1 << 26;  // no rectangle lies further out

constexpr const char* kClasses[] = {"Control",    "Container", "VerticalLayout", "HorizontalLayout",
                                    "TileLayout", "TabLayout", "Label",          "Text",
                                    "Button",     "Option",    "Progress",       "Slider"};
constexpr const char* kNames[] = {"accname",
                                  "align",
                                  "barcolor",
                                  "barheight",
                                  "bkcolor",
                                  "bkimage",
                                  "bordercolor",
                                  "borderround",
                                  "bordersize",
                                  "childpadding",
                                  "columns",
                                  "cursor",
                                  "disabledbkcolor",
                                  "disabledimage",
                                  "disabledtextcolor",
                                  "enabled",
                                  "endellipsis",
                                  "float",
                                  "focusbordercolor",
                                  "focusedimage",
                                  "font",
                                  "forecolor",
                                  "foreimage",
                                  "group",
                                  "growheight",
                                  "height",
                                  "hotbkcolor",
                                  "hotimage",
                                  "hottextcolor",
                                  "hscrollbar",
                                  "inset",
                                  "IsNcHit",
                                  "itemsize",
                                  "keyboard",
                                  "max",
                                  "maxheight",
                                  "maxwidth",
                                  "min",
                                  "minheight",
                                  "minwidth",
                                  "mirror",
                                  "mouse",
                                  "name",
                                  "normalimage",
                                  "padding",
                                  "pos",
                                  "pushedbkcolor",
                                  "pushedimage",
                                  "pushedtextcolor",
                                  "resetvalue",
                                  "rowpadding",
                                  "selected",
                                  "selectedbkcolor",
                                  "selectedid",
                                  "selectedimage",
                                  "selectedtextcolor",
                                  "showhtml",
                                  "showvalue",
                                  "stack",
                                  "step",
                                  "style",
                                  "text",
                                  "textcolor",
                                  "textpadding",
                                  "thumbimage",
                                  "thumbsize",
                                  "tooltip",
                                  "userdata",
                                  "valign",
                                  "value",
                                  "virtualwnd",
                                  "visible",
                                  "vscrollbar",
                                  "width",
                                  "wordwrap"};
constexpr const char* kValues[] = {
    "0",
    "1",
    "-1",
    "5",
    "17",
    "100",
    "350",
    "1000000",
    "-1000000",
    "1000001",
    "99999999999",
    "auto",
    "fill",
    "true",
    "false",
    "left",
    "center",
    "right",
    "top",
    "bottom",
    "hand",
    "0,0,0,0",
    "1,2,3,4",
    "10,20,300,400",
    "-5,-5,-5,-5",
    "1000000,1000000,1000000,1000000",
    "-1000000,0,1000000,0",
    "20,20",
    "1,1",
    "0,0",
    "60,40",
    "1000000,1000000",
    "#FF102030",
    "#80FF0000",
    "#00000000",
    "#123456",
    "accent",
    "controlborder",
    "a",
    "group",
    "IDS_LUMI_CANCEL",
    "one two three four",
    "&lt;b&gt;bold&lt;/b&gt; &lt;a href='https://example.org'&gt;link&lt;/a&gt;&lt;br&gt;next",
    "&#x5F00;&#x542F;&#x6444;&#x50CF;&#x5934;",
    "&#x645;&#x631;&#x62D;&#x628;&#x627;",
    "&#x1F600;&#x1F600;",
    "drawable/LumiCamera/unchecked.png",
    "file='drawable/LumiCamera/unchecked.png' corner='4,4,4,4' reverse='true'",
    "file='drawable/LumiCamera/unchecked.png' source='0,0,4000,1' dest='-5,-5,900000,3' fade='100'",
    "none.png",
    "card"};

template <std::size_t kCount>
const char* Pick(Input& in, const char* const (&from)[kCount]) {
    return from[in.Any<std::uint8_t>() % kCount];
}

// An element and what is in it. `left`: how many controls may still come.
void AppendElement(Input& in, std::string& xml, int& left, int level) {
    const char* const name = Pick(in, kClasses);
    xml.append("<").append(name);
    std::string seen = " ";
    for (auto count = in.Within(0, 7); count > 0; --count) {
        const std::string attribute = Pick(in, kNames);
        if (seen.find(" " + attribute + " ") == seen.npos) {
            seen += attribute + " ";
            xml += " " + attribute + "=\"" + Pick(in, kValues) + "\"";
        }
    }
    xml += ">";
    for (auto count = in.Within(0, 5); count > 0 && left > 0 && level < kMostLevels && !in.Empty(); --count) {
        --left;
        AppendElement(in, xml, left, level + 1);
    }
    xml.append("</").append(name).append(">\n");
}

std::string MakeLayout(Input& in) {
    std::string xml = "<Window size=\"400,300\">";
    if (in.Flag()) {
        xml += "<Font id=\"13\" size=\"" + std::to_string(in.Within(-5, 250)) + "\" default=\"true\"/>";
    }
    if (in.Flag()) {
        xml.append("<Style name=\"card\" value=\"").append(Pick(in, kNames)).append("='");
        xml.append(Pick(in, kValues)).append("'\"/>");
    }
    int left = kMostControls;
    AppendElement(in, xml, left, 0);
    return xml + "</Window>";
}

// The window whose client area the layouts fill, and the bitmap that they are painted into.
class Stage {
  public:
    static Stage& Get() {
        static Stage stage;
        return stage;
    }

    HWND Window() const { return window_; }
    HDC Dc() const { return dc_; }
    void Resize(int width, int height) const {
        SetWindowPos(window_, nullptr, 0, 0, width, height, SWP_NOZORDER | SWP_NOACTIVATE | SWP_NOMOVE);
    }

  private:
    Stage() {
        CPaintManagerUI::SetInstance(GetModuleHandleW(nullptr));
        CPaintManagerUI::SetResourcePath(CPaintManagerUI::GetInstancePath() + L"res\\");
        window_ = CreateWindowExW(0, L"STATIC", L"", WS_POPUP, 0, 0, 400, 300, nullptr, nullptr,
                                  GetModuleHandleW(nullptr), nullptr);
        REQUIRE(window_ != nullptr);
        dc_ = CreateCompatibleDC(nullptr);
        SelectObject(dc_, CreateBitmap(400, 300, 1, 32, nullptr));
    }

    HWND window_ = nullptr;
    HDC dc_ = nullptr;
};

bool InRange(int number) {
    return number >= -kFar && number <= kFar;
}

void CheckTree(CPaintManagerUI& manager) {
    CControlUI* const root = manager.GetRoot();
    int count = 0;
    root->Visit([&](CControlUI& control) {
        const Rect& px = control.GetPos();
        REQUIRE(InRange(px.left) && InRange(px.top) && InRange(px.right) && InRange(px.bottom));
        REQUIRE(px.Width() >= 0 && px.Height() >= 0);
        REQUIRE(control.GetManager() == &manager);
        REQUIRE(&control == root || control.GetParent() != nullptr);
        control.GetAccessibleInfo();
        ++count;
        return true;
    });
    REQUIRE(count > 0);
}

// A message as the system sends it, somewhere in the window.
void SendSomething(Input& in, CPaintManagerUI& manager) {
    constexpr std::array<UINT, 12> kMessages{WM_MOUSEMOVE,      WM_LBUTTONDOWN, WM_LBUTTONUP, WM_MOUSELEAVE,
                                             WM_MOUSEWHEEL,     WM_KEYDOWN,     WM_KEYDOWN,   WM_KEYUP,
                                             WM_CAPTURECHANGED, WM_SETFOCUS,    WM_KILLFOCUS, WM_SETTINGCHANGE};
    constexpr std::array<WPARAM, 12> kKeys{VK_TAB,  VK_SPACE, VK_RETURN, VK_LEFT,  VK_RIGHT, VK_UP,
                                           VK_DOWN, VK_HOME,  VK_END,    VK_PRIOR, VK_NEXT,  VK_ESCAPE};
    const UINT message = kMessages[static_cast<std::size_t>(in.Within(0, kMessages.size() - 1))];
    WPARAM wParam = 0;
    LPARAM lParam = 0;
    if (message == WM_KEYDOWN || message == WM_KEYUP) {
        wParam = kKeys[static_cast<std::size_t>(in.Within(0, kKeys.size() - 1))];
        lParam = 1;
    } else if (message == WM_MOUSEWHEEL) {
        wParam = MAKEWPARAM(0, static_cast<WORD>(in.Within(-5, 5) * WHEEL_DELTA));
        lParam = MAKELPARAM(in.Within(0, 399), in.Within(0, 299));
    } else if (message == WM_MOUSEMOVE || message == WM_LBUTTONDOWN || message == WM_LBUTTONUP) {
        lParam = MAKELPARAM(in.Within(-10, 410), in.Within(-10, 310));
    }
    LRESULT result = 0;
    manager.MessageHandler(message, wParam, lParam, result);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input in(data, size);
    const bool raw = size == 0 || data[0] == '<' || !in.Flag();
    const std::string layout = raw ? std::string(in.Rest().begin(), in.Rest().end()) : MakeLayout(in);
    const Stage& stage = Stage::Get();
    stage.Resize(400, 300);
    CPaintManagerUI manager;
    manager.Init(stage.Window());
    std::unique_ptr<CControlUI> root = CDialogBuilder().CreateFromText(layout, L"fuzz.xml", nullptr, &manager);
    if (root == nullptr) {
        REQUIRE(raw);
        return 0;
    }
    manager.AttachDialog(std::move(root));
    for (const int dpi : {96, 120, 288}) {
        manager.SetDPI(dpi);
        manager.UpdateLayout();
        CheckTree(manager);
    }
    manager.PaintTo(stage.Dc());
    for (int events = 0; events < 20 && !in.Empty(); ++events) {
        SendSomething(in, manager);
    }
    manager.SetDPI(96);
    stage.Resize(static_cast<int>(in.Within(0, 700)), static_cast<int>(in.Within(0, 700)));
    manager.NeedUpdate();
    manager.UpdateLayout();
    CheckTree(manager);
    manager.PaintTo(stage.Dc());
    return 0;
}
