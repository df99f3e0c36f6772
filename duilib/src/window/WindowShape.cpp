#include "window/WindowShape.h"

#include <dwmapi.h>

#include "suite/common/SystemLibrary.h"

namespace DuiLib {
namespace {

constinit suite::SystemLibrary dwmapi(L"dwmapi.dll");
constinit suite::SystemFunction<decltype(&DwmSetWindowAttribute)> setWindowAttribute(dwmapi, "DwmSetWindowAttribute");
constinit suite::SystemLibrary ntdll(L"ntdll.dll");
constinit suite::SystemFunction<LONG(WINAPI*)(OSVERSIONINFOW*)> getVersion(ntdll, "RtlGetVersion");

// Names that the compiler's headers do not know yet.
constexpr DWORD kCornerPreference = 33;
constexpr int kDoNotRound = 1;
constexpr int kRound = 2;
constexpr DWORD kFirstBuildThatRounds = 22000;

// The attribute alone does not tell: some systems answer S_OK to any.
bool SystemRounds() {
    static const bool rounds = [] {
        OSVERSIONINFOW version{};
        version.dwOSVersionInfoSize = sizeof(version);
        return getVersion(&version) == 0 && version.dwBuildNumber >= kFirstBuildThatRounds;
    }();
    return rounds;
}

}  // namespace

void ApplyWindowShape(HWND window, int radiusPx) {
    if (SystemRounds()) {
        const int preference = radiusPx > 0 ? kRound : kDoNotRound;
        if (setWindowAttribute(window, kCornerPreference, &preference, sizeof(preference)) == S_OK) {
            return;
        }
    }
    RECT rect{};
    if (radiusPx <= 0 || IsZoomed(window) || !GetWindowRect(window, &rect)) {
        RECT former{};
        if (GetWindowRgnBox(window, &former) != ERROR) {
            SetWindowRgn(window, nullptr, TRUE);
        }
        return;
    }
    // The region's right and bottom edges are not part of it, and the window owns it from here on.
    SetWindowRgn(
        window,
        CreateRoundRectRgn(0, 0, rect.right - rect.left + 1, rect.bottom - rect.top + 1, radiusPx * 2, radiusPx * 2),
        TRUE);
}

}  // namespace DuiLib
