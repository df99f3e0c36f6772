#include "tools/service/JsonLine.h"

#include <cstdio>

#include "suite/common/Utf8.h"

std::string JsonString(std::string_view utf8) {
    std::string out = "\"";
    while (!utf8.empty()) {
        const char32_t codePoint = suite::TakeCodePoint(utf8);
        if (codePoint == U'"' || codePoint == U'\\') {
            out += '\\';
            out += static_cast<char>(codePoint);
        } else if (codePoint < 0x20 || codePoint == 0x7F) {
            char escaped[8];
            std::snprintf(escaped, sizeof escaped, "\\u%04x", static_cast<unsigned>(codePoint));
            out += escaped;
        } else {
            suite::AppendUtf8(out, codePoint);
        }
    }
    return out + '"';
}

JsonLine& JsonLine::Text(std::string_view name, std::string_view utf8) {
    Name(name);
    members_ += JsonString(utf8);
    return *this;
}

JsonLine& JsonLine::Number(std::string_view name, std::int64_t value) {
    Name(name);
    members_ += std::to_string(value);
    return *this;
}

JsonLine& JsonLine::Object(std::string_view name, const JsonLine& object) {
    Name(name);
    members_ += object.Take();
    return *this;
}

void JsonLine::Name(std::string_view name) {
    if (!members_.empty()) {
        members_ += ',';
    }
    members_ += JsonString(name);
    members_ += ':';
}
