#pragma once
// The two places where the operating system lists cameras and opens one.
//
// Why a header of its own: a system without camera support, and every test, needs a camera that is made by a program.
// Each program chooses at link time what stands behind these functions: the library camera_system calls the operating
// system, the library camera_system_demo offers the cameras that the test or the demonstration set up. Nothing else
// differs. Called on the thread that starts the preview; results and ownership are those of the calls they stand for.
#include <windows.h>

#include <mfidl.h>

namespace camera_system {

// MFEnumDeviceSources: the caller frees the array with CoTaskMemFree after it has released each element. Some systems
// report success and leave both results alone, so set them to null and 0 before.
HRESULT EnumDeviceSources(IMFAttributes* attributes, IMFActivate*** devices, UINT32* count);

// MFCreateDeviceSource: opens the camera; the caller shuts the source down and releases it.
HRESULT CreateDeviceSource(IMFActivate* device, IMFMediaSource** source);

}  // namespace camera_system
