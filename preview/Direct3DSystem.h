#pragma once
// The two things that the renderer asks of the system before it has a device: Direct3D itself, and the box that tells
// that there is none.
//
// Why a header of its own: what Direct3D does when the screen is locked, a driver is renewed or a device is reset from
// another thread cannot be brought about at will. A test links a double in the place of the library direct3d_system,
// which calls the operating system.
#include <windows.h>

#include <d3d9.h>

namespace direct3d_system {

// Direct3DCreate9: null when the system has none. The caller releases it. Any thread.
IDirect3D9* Create9(UINT sdkVersion);

// MessageBoxW without an owner; returns when the user has closed it, and serves messages until then. On the window's
// thread.
void TellInBox(const wchar_t* text, const wchar_t* caption);

}  // namespace direct3d_system
