#pragma once
// The text of an XML file from its bytes.
//
// Why apart from the system's reader: readers differ in what they make of bytes that are no text, and some end the
// process on them. Only sound UTF-16 text reaches the reader. Pure logic. Any thread. May throw std::bad_alloc.
#include <optional>
#include <string>
#include <string_view>

namespace suite {

// The text without a byte order mark: UTF-8, or UTF-16 of either order when it begins with its mark. An encoding that
// the file names itself is not looked at. Nothing when the bytes are no valid text or hold a character that XML does
// not allow, such as NUL.
std::optional<std::wstring> DecodeXmlBytes(std::string_view bytes);

// Whether XML allows every character.
bool IsXmlText(std::wstring_view text);

}  // namespace suite
