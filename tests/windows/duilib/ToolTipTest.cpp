// Tooltips of controls, with the real pointer.
#include <windows.h>

#include <commctrl.h>

#include "TestWindow.h"
#include "tests/support/FakeLook.h"

namespace DuiLib::Test {
namespace {

struct Search {
    HWND owner;
    HWND found;
};

// The tooltip control of the window, shown or not.
HWND ToolTipOf(HWND owner) {
    Search search{owner, nullptr};
    EnumThreadWindows(
        GetCurrentThreadId(),
        [](HWND window, LPARAM lParam) -> BOOL {
            auto& s = *reinterpret_cast<Search*>(lParam);
            wchar_t name[64]{};
            GetClassNameW(window, name, 64);
            if (std::wstring_view(name) == TOOLTIPS_CLASSW && GetWindow(window, GW_OWNER) == s.owner) {
                s.found = window;
            }
            return s.found == nullptr;
        },
        reinterpret_cast<LPARAM>(&search));
    return search.found;
}

TEST(ToolTips, RestingOnAControlShowsItsTextAndLeavingHidesIt) {
    TestWindow window(R"(<Window size="300,100"><HorizontalLayout>
        <Button name="a" tooltip="What a does"/><Button name="b"/></HorizontalLayout></Window>)");
    SetWindowPos(window.GetHWND(), HWND_TOPMOST, 200, 200, 0, 0, SWP_NOSIZE);
    SetCursorPos(50, 50);
    window.ShowWindow();
    PumpPending();
    EXPECT_EQ(ToolTipOf(window.GetHWND()), nullptr);  // not made before it is wanted
    SetCursorPos(250, 250);
    EXPECT_TRUE(PumpUntil([&] {
        const HWND tip = ToolTipOf(window.GetHWND());
        return tip != nullptr && IsWindowVisible(tip);
    }));
    wchar_t text[64]{};
    TTTOOLINFOW info{};
    info.cbSize = TTTOOLINFOW_V2_SIZE;
    info.hwnd = window.GetHWND();
    info.uId = 1;
    info.lpszText = text;
    SendMessageW(ToolTipOf(window.GetHWND()), TTM_GETTEXTW, 64, reinterpret_cast<LPARAM>(&info));
    EXPECT_STREQ(text, L"What a does");
    SetCursorPos(450, 250);
    EXPECT_TRUE(PumpUntil([&] { return !IsWindowVisible(ToolTipOf(window.GetHWND())); }));
}

struct TipLook {
    COLORREF ground, text;
    LONG fontHeight;
};

TipLook LookOf(HWND tip) {
    LOGFONTW font{};
    GetObjectW(reinterpret_cast<HFONT>(SendMessageW(tip, WM_GETFONT, 0, 0)), sizeof(font), &font);
    return {static_cast<COLORREF>(SendMessageW(tip, TTM_GETTIPBKCOLOR, 0, 0)),
            static_cast<COLORREF>(SendMessageW(tip, TTM_GETTIPTEXTCOLOR, 0, 0)), font.lfHeight};
}

TEST(ToolTips, HaveTheThemesColoursAndTheUsersSizeOfText) {
    harness::FakeLook look;
    TestWindow window(R"(<Window size="300,100"><HorizontalLayout>
        <Button name="a" tooltip="What a does"/></HorizontalLayout></Window>)");
    window.ShowWindow();
    PumpPending();
    const auto hovered = [&] {
        window.Mouse(WM_MOUSEMOVE, {1000, 1000});
        window.Mouse(WM_MOUSEMOVE, window.CenterOf(L"a"));
        const HWND tip = ToolTipOf(window.GetHWND());
        EXPECT_NE(tip, nullptr);
        return LookOf(tip);
    };
    const TipLook light = hovered();
    EXPECT_EQ(light.fontHeight, -12);
    EXPECT_NE(light.ground, RGB(0x2B, 0x31, 0x3B));
    look.SetDark(true);
    harness::FakeLook::Tell(window.GetHWND());
    EXPECT_EQ(ToolTipOf(window.GetHWND()), nullptr);  // the next one is made anew
    const TipLook dark = hovered();
    EXPECT_EQ(dark.ground, RGB(0x2B, 0x31, 0x3B));
    EXPECT_EQ(dark.text, RGB(0xF1, 0xF3, 0xF7));
    look.textScaleFactor = 200;
    look.highContrast = true;
    harness::FakeLook::Tell(window.GetHWND());
    EXPECT_EQ(ToolTipOf(window.GetHWND()), nullptr);
    const TipLook contrast = hovered();
    EXPECT_EQ(contrast.ground, light.ground);  // the system's own
    EXPECT_EQ(contrast.fontHeight, -24);
    window.PaintManager().SetDPI(144);
    EXPECT_EQ(ToolTipOf(window.GetHWND()), nullptr);  // it had a font of the other scale
    EXPECT_EQ(hovered().fontHeight, -36);
}

}  // namespace
}  // namespace DuiLib::Test
