#pragma once
// The message by which the frame capture reaches the pages' window, which passes it on to them on the hub.
//
// Why: windows do not know the preview. Constant data, any thread.
#include <windows.h>

#include "preview/Preview.h"

// Posted when reading or drawing failed; the result is in wParam.
inline constexpr UINT kCaptureMessage = Preview::kEventMessage;
