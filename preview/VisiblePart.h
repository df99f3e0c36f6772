#pragma once
// Which part of a frame is the picture: decoders deliver whole blocks, and what lies beyond is not to be seen (1080
// lines of 1088). Any thread.
#include <windows.h>

#include <mfobjects.h>

namespace preview {

// The media type's display aperture; the whole frame when it tells none, or one that does not lie within the frame.
RECT VisiblePart(IMFAttributes* type, LONG width, LONG height);

}  // namespace preview
