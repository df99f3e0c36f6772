#pragma once
// The owner of one open registry key. Predefined keys (HKEY_CURRENT_USER …) are nobody's and are not put in.
#include <windows.h>

#include "suite/common/Owner.h"

namespace suite {

struct OpenRegistryKey {
    using Raw = HKEY;
    static Raw Valid(Raw key) { return key; }
    static void Close(Raw key) { RegCloseKey(key); }
};

using RegistryKey = Owner<OpenRegistryKey>;

}  // namespace suite
