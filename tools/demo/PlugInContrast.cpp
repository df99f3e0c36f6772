// Turns a contrast theme on for PixoraDemo where the environment variable PIXORA_DEMO_CONTRAST is set: not every system
// can be told to. Everything else is asked of the system, its colours too.
#include <windows.h>

#include "DuiLib/Theme.h"

namespace {

BOOL WINAPI ContrastIsOn(UINT action, UINT parameter, void* data, UINT flags) {
    const BOOL done = SystemParametersInfoW(action, parameter, data, flags);
    if (action == SPI_GETHIGHCONTRAST && done) {
        static_cast<HIGHCONTRASTW*>(data)->dwFlags |= HCF_HIGHCONTRASTON;
    }
    return done;
}

bool PlugIn() {
    if (GetEnvironmentVariableW(L"PIXORA_DEMO_CONTRAST", nullptr, 0) == 0) {
        return false;
    }
    DuiLib::SystemLookCalls calls = DuiLib::DefaultLookCalls();
    calls.systemParametersInfo = ContrastIsOn;
    DuiLib::UITheme::GetInstance()->SetCalls(calls);
    return true;
}

[[maybe_unused]] const bool g_pluggedIn = PlugIn();

}  // namespace
