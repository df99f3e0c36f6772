#include "preview/Direct3DSystem.h"

#include "suite/common/SystemLibrary.h"

namespace direct3d_system {

namespace {

constinit suite::SystemLibrary d3d9(L"d3d9.dll");
constinit suite::SystemFunction<decltype(&Direct3DCreate9)> create9(d3d9, "Direct3DCreate9");

}  // namespace

IDirect3D9* Create9(UINT sdkVersion) {
    return create9.CallOr(nullptr, sdkVersion);
}

void TellInBox(const wchar_t* text, const wchar_t* caption) {
    MessageBoxW(nullptr, text, caption, MB_OK);
}

}  // namespace direct3d_system
