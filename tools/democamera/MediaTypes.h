#pragma once
// Media types of a demo camera's modes. Any thread.
#include <windows.h>

#include <mfobjects.h>

#include "tools/democamera/CameraMode.h"

namespace democamera {

const GUID& SubtypeOf(CameraFormat format);

// `index`: the mode's place in the camera's list; ModeOf finds it again, in the type or a copy of it.
HRESULT MakeMediaType(const CameraMode& mode, UINT32 index, IMFMediaType** type);
HRESULT ModeOf(IMFMediaType* type, UINT32* index);

}  // namespace democamera
