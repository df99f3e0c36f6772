#pragma once
// How a usage event looks in the spool file: one JSON object, without a line break.
//
//     {"time":"2026-11-21T09:15:30.123Z","event":"631770001","text":"open camera"}
//     {"time":"2026-11-21T09:15:30.123Z","event":"992612801","fields":{"STATUS":1,"SMOOTH":5}}
// Pure logic; narrow strings are UTF-8, and bytes that are not become U+FFFD. Any thread. May throw std::bad_alloc.
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace suite {

struct UtcTime {
    int year = 0;
    int month = 0;
    int day = 0;
    int hour = 0;
    int minute = 0;
    int second = 0;
    int millisecond = 0;
};

std::string TextEventLine(const UtcTime& time, std::string_view eventId, std::string_view text);
std::string FieldEventLine(const UtcTime& time, int eventId, const std::vector<std::pair<std::string, int>>& fields);

}  // namespace suite
