#pragma once
// Stores a bitmap as an uncompressed bitmap file, whatever the file's name ends in.
// The thread that owns the bitmap; the bitmap must not be selected into a device context.
#include <windows.h>

#include <string>

// Overwrites an existing file. False when the bitmap has no size or the file cannot be created or written.
[[nodiscard]] bool SaveBitmapToFile(HBITMAP bitmap, const std::wstring& path);
