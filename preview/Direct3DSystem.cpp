#include "preview/Direct3DSystem.h"

namespace direct3d_system {

IDirect3D9* Create9(UINT sdkVersion) {
    return Direct3DCreate9(sdkVersion);
}

void TellInBox(const wchar_t* text, const wchar_t* caption) {
    MessageBoxW(nullptr, text, caption, MB_OK);
}

}  // namespace direct3d_system
