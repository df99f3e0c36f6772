#pragma once
// Whether a file counts as a picture or a video, by its extension alone. Pure functions, any thread.
#include <string_view>

namespace pictures::FileKinds {

// The text from the last "." of the path on, in any case, is ".mp4" or ".mov".
bool IsVideo(std::wstring_view path);
// As above, ".jpg", ".png", ".bmp" or ".jpeg".
bool IsImage(std::wstring_view path);

}  // namespace pictures::FileKinds
