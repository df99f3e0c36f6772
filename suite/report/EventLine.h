#pragma once
// How a usage event looks in the spool: one JSON object on one line.
//
// Why apart: the form is the contract with whoever reads the spool, and pure logic. Any text may be reported; what is
// no valid UTF-8 becomes U+FFFD. Any thread. May throw std::bad_alloc.
#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace suite {

// Bytes of a line that the spool takes, its line break not counted.
inline constexpr std::size_t kLongestEventLine = 16 * 1024;

// A point in time, in UTC.
struct EventTime {
    int year = 0;
    int month = 0;
    int day = 0;
    int hour = 0;
    int minute = 0;
    int second = 0;
    int millisecond = 0;
};

// {"time":"2026-11-21T09:15:30.123Z","id":"631770001","text":"open camera"}
std::string TextEventLine(const EventTime& time, std::string_view id, std::string_view text);

// {"time":"2026-11-21T09:15:30.123Z","id":"992612801","fields":{"STATUS":1,"SMOOTH":5}}
std::string FieldEventLine(const EventTime& time, int id, const std::vector<std::pair<std::string, int>>& fields);

// Whether it can be a line of the spool: neither empty nor too long, and without control characters.
bool IsEventLine(std::string_view line);

}  // namespace suite
