#pragma once
// The camera formats that the renderer draws as they are, with their converters; its order is the order in which they
// are offered to a camera. Built before main, constant afterwards. Any thread.
#include <windows.h>

#include <span>

#include "preview/pixels/PixelConverter.h"

namespace preview {

struct FormatEntry {
    GUID subtype;
    PixelFormat format;
    PixelConverter plain;
    PixelConverter mirrored;  // plain and the mirror step with four bytes a pixel, in one pass
};

std::span<const FormatEntry> FormatTable();

// Null when the subtype is not in the table.
const FormatEntry* FindFormat(const GUID& subtype);

}  // namespace preview
