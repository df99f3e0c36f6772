#pragma once
// What the bytes of a string value in the registry say.
//
// Why apart: whoever wrote the value may have left out the terminator, counted it twice or written half a character;
// the system hands such bytes on as they are. Pure logic. Any thread.
#include <cstddef>
#include <optional>
#include <string>

namespace DE {

// The UTF-16 text up to its terminator, or to the end when it has none. Nothing when the size is odd: half a character
// means that the bytes are no text.
std::optional<std::wstring> DecodeRegistryText(const unsigned char* bytes, std::size_t byteCount);

// The path as the system wants it: without backslashes at its front.
std::wstring SystemKeyPath(const std::wstring& keyPath);

}  // namespace DE
