#pragma once
// Media types of a demo camera's modes. Any thread.
#include <windows.h>

#include <mfobjects.h>

#include "tools/democamera/CameraMode.h"

namespace democamera {

const GUID& SubtypeOf(CameraFormat format);

HRESULT MakeMediaType(const CameraMode& mode, IMFMediaType** type);

// Whether a type that a reader has chosen is that of the mode: what else it says does not matter.
bool IsTypeOf(const CameraMode& mode, IMFMediaType* type);

}  // namespace democamera
