#pragma once
// Wide text as Windows programs are handed it: 16-bit units, surrogates as two of them, and single ones too.
//
// Why: on the systems that run the fuzzers a wide character has 32 bits, and text from UTF-8 never shows what half a
// pair does. Pure functions, any thread.
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "suite/common/Utf8.h"

// UTF-8, in which 0xFF stands before the two bytes of any unit.
inline std::wstring WideText(std::span<const std::uint8_t> bytes) {
    std::wstring text;
    std::string_view rest(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    while (!rest.empty()) {
        if (rest.front() == '\xFF' && rest.size() >= 3) {
            text +=
                static_cast<wchar_t>(static_cast<unsigned char>(rest[1]) << 8 | static_cast<unsigned char>(rest[2]));
            rest.remove_prefix(3);
            continue;
        }
        const char32_t c = suite::TakeCodePoint(rest);
        if (c > 0xFFFF) {
            text += static_cast<wchar_t>(0xD800 + ((c - 0x10000) >> 10));
            text += static_cast<wchar_t>(0xDC00 + ((c - 0x10000) & 0x3FF));
        } else {
            text += static_cast<wchar_t>(c);
        }
    }
    return text;
}
