#include <windows.h>

#include <string>

#include "diagnostics/Sections.h"
#include "suite/registry/Registry.h"

namespace diagnostics {

namespace {

constexpr wchar_t kPersonalize[] = L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Themes\\Personalize";
constexpr wchar_t kAccessibility[] = L"SOFTWARE\\Microsoft\\Accessibility";

int UserNumber(const wchar_t* key, const wchar_t* name, int missing) {
    int value = missing;
    DE::Registry::GetValue(HKEY_CURRENT_USER, key, name, value, KEY_QUERY_VALUE);
    return value;
}

bool HasHighContrast() {
    HIGHCONTRASTW contrast{};
    contrast.cbSize = sizeof contrast;
    return SystemParametersInfoW(SPI_GETHIGHCONTRAST, sizeof contrast, &contrast, 0) &&
           (contrast.dwFlags & HCF_HIGHCONTRASTON) != 0;
}

void AddLookOfTheSystem(Report& report) {
    const bool light = UserNumber(kPersonalize, L"AppsUseLightTheme", 1) != 0;
    report.Note(std::string("programs are ") + (light ? "light" : "dark") + ", contrast theme " +
                (HasHighContrast() ? "on" : "off"));
    report.Note("size of text " + std::to_string(UserNumber(kAccessibility, L"TextScaleFactor", 100)) + " %");
}

void AddInput(Report& report) {
    const int buttons = GetSystemMetrics(SM_CMOUSEBUTTONS);
    report.Note(buttons == 0 ? "no mouse" : "mouse with " + std::to_string(buttons) + " buttons");
    const int digitizers = GetSystemMetrics(SM_DIGITIZER);
    const bool ready = (digitizers & NID_READY) != 0;
    if (ready && (digitizers & (NID_INTEGRATED_TOUCH | NID_EXTERNAL_TOUCH)) != 0) {
        report.Note("touch with " + std::to_string(GetSystemMetrics(SM_MAXIMUMTOUCHES)) + " fingers");
    } else {
        report.Note("no touch");
    }
    if (ready && (digitizers & (NID_INTEGRATED_PEN | NID_EXTERNAL_PEN)) != 0) {
        report.Note("a pen");
    }
    if (GetSystemMetrics(SM_REMOTESESSION) != 0) {
        report.Note("a remote session");
    }
}

}  // namespace

void AddLook(Report& report) {
    report.Section("Look and input");
    AddLookOfTheSystem(report);
    AddInput(report);
}

}  // namespace diagnostics
