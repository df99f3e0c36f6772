#pragma once
// Writes any picture file that the system can decode as a plain JPEG file: upright, opaque, without the file's notes.
//
// Rows pass through in bands, so that no picture is held in memory whole, but for one that has to be turned.
// Threads: any that has entered a COM apartment.
#include <windows.h>

#include <string>

// Overwrites `target`, which is of no use after a failure; `source` must be another file and is only read.
[[nodiscard]] HRESULT SaveAsJpeg(const std::wstring& source, const std::wstring& target);
