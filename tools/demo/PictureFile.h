#pragma once
// Loads an image file as the demo scene wants it. Any thread; starts COM on it for the time of the call.
#include <memory>
#include <string>

#include "tools/democamera/DemoScene.h"

// Null when the file cannot be read.
std::shared_ptr<const democamera::Picture> LoadPicture(const std::wstring& path);
