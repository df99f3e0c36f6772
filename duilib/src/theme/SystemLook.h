#pragma once
// What the system says of its look at one moment. Thread: UI thread.
#include <string>

#include "DuiLib/SystemLook.h"
#include "theme/ColorTable.h"

namespace DuiLib {

struct SystemLook {
    bool highContrast = false;
    bool dark = false;      // what the user chose for programs; without a choice it is light
    SystemColors colors{};  // with highContrast only
    int textPercent = 100;  // 100 to 225
    std::wstring messageFace;
    // How text is smoothed: on or off, standard or ClearType, and ClearType's contrast.
    UINT smoothing = 0, smoothingType = 0, smoothingContrast = 0;

    bool operator==(const SystemLook&) const = default;
    // Text is measured or drawn differently.
    bool HasOtherText(const SystemLook& other) const;
};

SystemLook ReadSystemLook(const SystemLookCalls& calls);

}  // namespace DuiLib
