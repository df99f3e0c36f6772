#pragma once
// How a line of the process log looks.
//
// Why apart: the form is the contract of everything that reads logs, and pure logic. A text comes from anywhere, so it
// can never break its line, hide what follows or fill the disk. Any thread.
#include <cstddef>
#include <string>
#include <string_view>

namespace suite {

struct LogTime {
    int year = 0;
    int month = 0;
    int day = 0;
    int hour = 0;
    int minute = 0;
    int second = 0;
    int millisecond = 0;
};

// Wide units of a text that are kept; the rest of a longer text becomes "...".
inline constexpr std::size_t kLongestLogText = 8192;

// "2026-11-21 10:15:30.123 [L4] [1234] text\n" in UTF-8. A line break (also CR LF) becomes one blank, and so does any
// other control character.
std::string FormatLogLine(const LogTime& time, int level, unsigned long threadId, std::wstring_view text);

}  // namespace suite
