#pragma once
// The gallery's thumbnail of a picture file of the user's own backgrounds. Threads: any that has entered a COM
// apartment.
#include <string>

#include "suite/common/GdiObject.h"

namespace pictures {

// The thumbnail that the file carries, or else one made of the whole picture; null when the file cannot be read.
suite::GdiBitmap LoadPictureThumbnail(const std::wstring& path);

}  // namespace pictures
