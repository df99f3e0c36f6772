#include "suite/logger/LogText.h"

#include <cstdio>

#include "suite/common/Utf8.h"

namespace suite {

namespace {

bool IsControl(char32_t value) {
    return value < 0x20 || (value >= 0x7F && value < 0xA0) || value == 0x2028 || value == 0x2029;
}

}  // namespace

std::string FormatLogLine(const LogTime& time, int level, unsigned long threadId, std::wstring_view text) {
    char prefix[128];
    std::snprintf(prefix, sizeof prefix, "%04d-%02d-%02d %02d:%02d:%02d.%03d [L%d] [%lu] ", time.year, time.month,
                  time.day, time.hour, time.minute, time.second, time.millisecond, level, threadId);
    std::string line = prefix;
    const bool tooLong = text.size() > kLongestLogText;
    text = text.substr(0, kLongestLogText);
    line.reserve(line.size() + text.size() + 4);
    while (!text.empty()) {
        const char32_t value = TakeCodePoint(text);
        if (value == U'\r' && !text.empty() && text.front() == L'\n') {
            text.remove_prefix(1);
        }
        AppendUtf8(line, IsControl(value) ? U' ' : value);
    }
    line += tooLong ? "...\n" : "\n";
    return line;
}

}  // namespace suite
