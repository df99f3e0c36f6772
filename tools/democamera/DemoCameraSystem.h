#pragma once
// The stand-in behind preview/CameraSystem.h: the cameras that the operating system is made to list.
//
// A program that links camera_system_demo instead of camera_system sees these cameras and no others. Any thread.
#include <memory>
#include <vector>

#include "tools/democamera/DemoCamera.h"

namespace democamera {

// What is listed from now on, in that order. A camera that is not plugged in is not listed.
void SetCameras(std::vector<std::shared_ptr<DemoCamera>> cameras);

// What listing the cameras results in; a failure lists nothing.
void SetEnumerationResult(HRESULT result);

}  // namespace democamera
