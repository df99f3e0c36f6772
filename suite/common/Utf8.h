#pragma once
// Conversion between the system's wide strings and UTF-8.
//
// Why not the system's own calls: these also run in the native tests, and a damaged text must give a readable result
// instead of an error. What is not valid becomes U+FFFD. Wide units are UTF-16 where wchar_t has 16 bits, else UTF-32.
// Any thread.
#include <string>
#include <string_view>

namespace suite {

// One code point; surrogates and values past U+10FFFF become U+FFFD.
void AppendUtf8(std::string& out, char32_t codePoint);

std::string ToUtf8(std::wstring_view text);
std::wstring FromUtf8(std::string_view text);

// Takes the next code point from the front of a text that is not empty.
char32_t TakeCodePoint(std::wstring_view& text);
char32_t TakeCodePoint(std::string_view& text);

}  // namespace suite
