#include "theme/SystemLook.h"

#include <dwmapi.h>

#include <algorithm>
#include <tuple>
#include <utility>

#include "suite/common/SystemLibrary.h"

namespace DuiLib {
namespace {

constinit suite::SystemLibrary dwmapi(L"dwmapi.dll");
constinit suite::SystemFunction<decltype(&DwmSetWindowAttribute)> setWindowAttribute(dwmapi, "DwmSetWindowAttribute");

constexpr DWORD kSmallestText = 100;
constexpr DWORD kLargestText = 225;
constexpr wchar_t kPersonalize[] = L"Software\\Microsoft\\Windows\\CurrentVersion\\Themes\\Personalize";
constexpr wchar_t kAccessibility[] = L"Software\\Microsoft\\Accessibility";
constexpr wchar_t kUsualFace[] = L"Segoe UI";

constexpr std::pair<SystemColor, int> kIndexes[] = {
    {SystemColor::kWindow, COLOR_WINDOW},       {SystemColor::kWindowText, COLOR_WINDOWTEXT},
    {SystemColor::kHotLight, COLOR_HOTLIGHT},   {SystemColor::kGrayText, COLOR_GRAYTEXT},
    {SystemColor::kBtnFace, COLOR_BTNFACE},     {SystemColor::kBtnText, COLOR_BTNTEXT},
    {SystemColor::kHighlight, COLOR_HIGHLIGHT}, {SystemColor::kHighlightText, COLOR_HIGHLIGHTTEXT},
};

bool IsHighContrast(const SystemLookCalls& calls) {
    HIGHCONTRASTW highContrast{};
    highContrast.cbSize = sizeof(highContrast);
    return calls.systemParametersInfo(SPI_GETHIGHCONTRAST, sizeof(highContrast), &highContrast, 0) != FALSE &&
           (highContrast.dwFlags & HCF_HIGHCONTRASTON) != 0;
}

SystemColors ReadColors(const SystemLookCalls& calls) {
    SystemColors colors{};
    for (const auto& [color, index] : kIndexes) {
        const COLORREF value = calls.getSysColor(index);
        colors[static_cast<std::size_t>(color)] = 0xFF000000u | static_cast<std::uint32_t>(GetRValue(value)) << 16 |
                                                  static_cast<std::uint32_t>(GetGValue(value)) << 8 | GetBValue(value);
    }
    return colors;
}

DWORD UserNumber(const SystemLookCalls& calls, const wchar_t* key, const wchar_t* name, DWORD otherwise) {
    DWORD value = 0;
    DWORD size = sizeof(value);
    const LSTATUS status = calls.regGetValue(HKEY_CURRENT_USER, key, name, RRF_RT_REG_DWORD, nullptr, &value, &size);
    return status == ERROR_SUCCESS ? value : otherwise;
}

std::wstring MessageFace(const SystemLookCalls& calls) {
    NONCLIENTMETRICSW metrics{};
    metrics.cbSize = sizeof(metrics);
    const bool known = calls.systemParametersInfo(SPI_GETNONCLIENTMETRICS, metrics.cbSize, &metrics, 0) != FALSE;
    return known ? metrics.lfMessageFont.lfFaceName : kUsualFace;
}

UINT NumberOf(const SystemLookCalls& calls, UINT action) {
    UINT value = 0;
    return calls.systemParametersInfo(action, 0, &value, 0) != FALSE ? value : 0;
}

HRESULT WINAPI SetFrameAttribute(HWND window, DWORD attribute, LPCVOID value, DWORD size) {
    return setWindowAttribute(window, attribute, value, size);
}

}  // namespace

SystemLookCalls DefaultLookCalls() {
    return {::SystemParametersInfoW, ::GetSysColor, ::RegGetValueW, SetFrameAttribute};
}

bool SystemLook::HasOtherText(const SystemLook& other) const {
    const auto text = [](const SystemLook& look) {
        return std::tie(look.textPercent, look.messageFace, look.smoothing, look.smoothingType, look.smoothingContrast);
    };
    return text(*this) != text(other);
}

SystemLook ReadSystemLook(const SystemLookCalls& calls) {
    SystemLook look;
    look.highContrast = IsHighContrast(calls);
    if (look.highContrast) {
        look.colors = ReadColors(calls);
    }
    look.dark = UserNumber(calls, kPersonalize, L"AppsUseLightTheme", 1) == 0;
    const DWORD percent = UserNumber(calls, kAccessibility, L"TextScaleFactor", kSmallestText);
    look.textPercent = static_cast<int>(std::clamp(percent, kSmallestText, kLargestText));
    look.messageFace = MessageFace(calls);
    look.smoothing = NumberOf(calls, SPI_GETFONTSMOOTHING);
    look.smoothingType = NumberOf(calls, SPI_GETFONTSMOOTHINGTYPE);
    look.smoothingContrast = NumberOf(calls, SPI_GETFONTSMOOTHINGCONTRAST);
    return look;
}

}  // namespace DuiLib
