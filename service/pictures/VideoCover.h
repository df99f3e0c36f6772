#pragma once
// The picture that stands for a video.
//
// Threads: any.
#include <chrono>
#include <string>

#include "suite/common/GdiObject.h"

namespace pictures {

// How long a video may take to be opened and read: some damaged ones keep the system's decoders busy for ever.
inline constexpr std::chrono::seconds kVideoPatience{10};

// The shell's, or else one of the video's own first frames; null when the file shows nothing in time.
suite::GdiBitmap LoadVideoCover(const std::wstring& path);

}  // namespace pictures
