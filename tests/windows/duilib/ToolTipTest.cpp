// Tooltips of controls, with the real pointer.
#include <windows.h>

#include <commctrl.h>

#include "TestWindow.h"

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

}  // namespace
}  // namespace DuiLib::Test
