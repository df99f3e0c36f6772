#pragma once
// The picture that the system's shell shows for a file: its extractor for the file's type, asked directly.
//
// Threads: any in a single-threaded COM apartment.
#include <windows.h>

#include <string>

#include "suite/common/GdiObject.h"

namespace pictures {

// About that large, in pixels; without a size the extractor decides. Null where there is no extractor for the type, or
// when it fails.
suite::GdiBitmap ExtractShellPicture(const std::wstring& path, const SIZE* sizePx = nullptr);

}  // namespace pictures
