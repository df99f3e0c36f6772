#include "suite/report/EventLine.h"

#include <algorithm>
#include <cstdio>

#include "suite/common/Utf8.h"

namespace suite {

namespace {

void AppendString(std::string& line, std::string_view text) {
    line += '"';
    while (!text.empty()) {
        const char32_t value = TakeCodePoint(text);
        if (value == U'"' || value == U'\\') {
            line += '\\';
            line += static_cast<char>(value);
        } else if (value < 0x20 || value == 0x7F || value == 0x2028 || value == 0x2029) {
            char escape[8];
            std::snprintf(escape, sizeof escape, "\\u%04x", static_cast<unsigned>(value));
            line += escape;
        } else {
            AppendUtf8(line, value);
        }
    }
    line += '"';
}

std::string Begin(const EventTime& time, std::string_view id) {
    char text[128];
    std::snprintf(text, sizeof text, "{\"time\":\"%04d-%02d-%02dT%02d:%02d:%02d.%03dZ\",\"id\":", time.year, time.month,
                  time.day, time.hour, time.minute, time.second, time.millisecond);
    std::string line = text;
    AppendString(line, id);
    return line;
}

}  // namespace

std::string TextEventLine(const EventTime& time, std::string_view id, std::string_view text) {
    std::string line = Begin(time, id) + ",\"text\":";
    AppendString(line, text);
    return line + '}';
}

std::string FieldEventLine(const EventTime& time, int id, const std::vector<std::pair<std::string, int>>& fields) {
    std::string line = Begin(time, std::to_string(id)) + ",\"fields\":{";
    const char* separator = "";
    for (const auto& [key, value] : fields) {
        line += separator;
        AppendString(line, key);
        line += ':' + std::to_string(value);
        separator = ",";
    }
    return line + "}}";
}

bool IsEventLine(std::string_view line) {
    return !line.empty() && line.size() <= kLongestEventLine &&
           std::none_of(line.begin(), line.end(), [](char unit) { return static_cast<unsigned char>(unit) < 0x20; });
}

}  // namespace suite
