#pragma once
// Makes a plain JPEG file of any picture file that the system can decode: upright, opaque, without the file's notes,
// with the gallery's thumbnail in it.
//
// Rows pass through in bands, so that no picture is held in memory whole, but for one that has to be turned.
// Threads: any that has entered a COM apartment.
#include <windows.h>

#include <cstdint>
#include <string>
#include <vector>

namespace pictures {

// `file` gets the bytes of the JPEG file. `source` is only read.
[[nodiscard]] HRESULT EncodeAsJpeg(const std::wstring& source, std::vector<std::uint8_t>& file);

}  // namespace pictures
