#pragma once
// The screens of a computer as a module of the program sees them, while one lives: their places, work areas and scales,
// and what the starter of the process said.
//
// Why: the displays that tests run on are one screen without a task bar. It keeps to the documented rules: a structure
// without its size is refused, a screen that is gone has no information, a minimised window is where it was before, a
// window has the scale of the screen that holds most of it. Thread: the test's, which is the UI thread.
#include <gtest/gtest.h>
#include <windows.h>

#include <algorithm>
#include <optional>
#include <vector>

#include "tests/support/ImportHook.h"

namespace harness {

class FakeScreens {
  public:
    struct Screen {
        RECT all;
        RECT work;
        UINT dpi;
    };

    explicit FakeScreens(std::vector<Screen> those) : screens(std::move(those)) { current_ = this; }
    ~FakeScreens() { current_ = nullptr; }
    FakeScreens(const FakeScreens&) = delete;
    FakeScreens& operator=(const FakeScreens&) = delete;

    static HMONITOR Handle(std::size_t index) { return reinterpret_cast<HMONITOR>(kFirst + index); }

    std::vector<Screen> screens;
    std::optional<POINT> cursor;
    STARTUPINFOW start{};

  private:
    static constexpr std::size_t kFirst = 0x5C0001;

    static long long Overlap(const RECT& one, const RECT& other) {
        RECT both{};
        return IntersectRect(&both, &one, &other)
                   ? static_cast<long long>(both.right - both.left) * (both.bottom - both.top)
                   : 0;
    }
    static long long Distance(const RECT& from, const RECT& to) {
        const long long dx = std::max({from.left - to.right, to.left - from.right, 0L});
        const long long dy = std::max({from.top - to.bottom, to.top - from.bottom, 0L});
        return dx * dx + dy * dy;
    }
    static std::size_t IndexOf(const RECT& rect) {
        const std::vector<Screen>& all = current_->screens;
        const auto better = [&](const Screen& one, const Screen& other) {
            const long long overlap = Overlap(rect, one.all) - Overlap(rect, other.all);
            return overlap != 0 ? overlap > 0 : Distance(rect, one.all) < Distance(rect, other.all);
        };
        std::size_t best = 0;
        for (std::size_t i = 1; i < all.size(); ++i) {
            best = better(all[i], all[best]) ? i : best;
        }
        return best;
    }
    static std::size_t IndexOf(HWND window) {
        RECT rect{};
        EXPECT_TRUE(GetWindowRect(window, &rect));
        if (IsIconic(window)) {
            WINDOWPLACEMENT placement{};
            placement.length = sizeof(placement);
            GetWindowPlacement(window, &placement);
            rect = placement.rcNormalPosition;
        }
        return IndexOf(rect);
    }

    static BOOL WINAPI Info(HMONITOR monitor, LPMONITORINFO info) {
        const std::size_t index = reinterpret_cast<std::size_t>(monitor) - kFirst;
        if (index >= current_->screens.size() || info->cbSize != sizeof(MONITORINFO)) {
            return FALSE;
        }
        info->rcMonitor = current_->screens[index].all;
        info->rcWork = current_->screens[index].work;
        info->dwFlags = index == 0 ? MONITORINFOF_PRIMARY : 0;
        return TRUE;
    }
    static HMONITOR WINAPI FromWindow(HWND window, DWORD flags) {
        EXPECT_EQ(flags, static_cast<DWORD>(MONITOR_DEFAULTTONEAREST));
        return Handle(IndexOf(window));
    }
    static HMONITOR WINAPI FromRect(LPCRECT rect, DWORD flags) {
        EXPECT_EQ(flags, static_cast<DWORD>(MONITOR_DEFAULTTONEAREST));
        return Handle(IndexOf(*rect));
    }
    static HMONITOR WINAPI FromPoint(POINT point, DWORD flags) {
        EXPECT_EQ(flags, static_cast<DWORD>(MONITOR_DEFAULTTONEAREST));
        return Handle(IndexOf(RECT{point.x, point.y, point.x + 1, point.y + 1}));
    }
    static UINT WINAPI DpiOf(HWND window) { return current_->screens[IndexOf(window)].dpi; }
    static void WINAPI Startup(LPSTARTUPINFOW info) { *info = current_->start; }
    static BOOL WINAPI Cursor(LPPOINT point) {
        if (current_->cursor) {
            *point = *current_->cursor;
            return TRUE;
        }
        return GetCursorPos(point);
    }

    static inline FakeScreens* current_ = nullptr;
    const HMODULE library_ = GetModuleHandleW(L"DuiLib.dll");
    const ImportHook info_{library_, "GetMonitorInfoW", &Info};
    const ImportHook fromWindow_{library_, "MonitorFromWindow", &FromWindow};
    const ImportHook fromRect_{library_, "MonitorFromRect", &FromRect};
    const ImportHook fromPoint_{library_, "MonitorFromPoint", &FromPoint};
    const ImportHook dpi_{library_, "GetDpiForWindow", &DpiOf};
    const ImportHook startup_{library_, "GetStartupInfoW", &Startup};
    const ImportHook cursor_{library_, "GetCursorPos", &Cursor};
};

}  // namespace harness
