#include "suite/report/EventLine.h"

#include <cstdio>

#include "suite/common/Utf8.h"

namespace suite {

namespace {

void AppendQuoted(std::string& out, std::string_view text) {
    out += '"';
    while (!text.empty()) {
        const char32_t value = TakeCodePoint(text);
        if (value == U'"' || value == U'\\') {
            out += '\\';
            out += static_cast<char>(value);
        } else if (value < 0x20 || value == 0x7F || value == 0x2028 || value == 0x2029) {
            char escape[8];
            std::snprintf(escape, sizeof escape, "\\u%04x", static_cast<unsigned>(value));
            out += escape;
        } else {
            AppendUtf8(out, value);
        }
    }
    out += '"';
}

std::string Begin(const UtcTime& time, std::string_view eventId) {
    char stamp[128];
    std::snprintf(stamp, sizeof stamp, "{\"time\":\"%04d-%02d-%02dT%02d:%02d:%02d.%03dZ\",\"event\":", time.year,
                  time.month, time.day, time.hour, time.minute, time.second, time.millisecond);
    std::string line = stamp;
    AppendQuoted(line, eventId);
    return line;
}

}  // namespace

std::string TextEventLine(const UtcTime& time, std::string_view eventId, std::string_view text) {
    std::string line = Begin(time, eventId);
    line += ",\"text\":";
    AppendQuoted(line, text);
    line += '}';
    return line;
}

std::string FieldEventLine(const UtcTime& time, int eventId, const std::vector<std::pair<std::string, int>>& fields) {
    std::string line = Begin(time, std::to_string(eventId));
    line += ",\"fields\":{";
    for (const auto& [key, value] : fields) {
        if (line.back() != '{') {
            line += ',';
        }
        AppendQuoted(line, key);
        line += ':';
        line += std::to_string(value);
    }
    line += "}}";
    return line;
}

}  // namespace suite
