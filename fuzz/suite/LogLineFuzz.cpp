// Lines of the process log: whatever a text holds, it stays one line of readable UTF-8.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>

#include "fuzz/support/Input.h"
#include "fuzz/support/Require.h"
#include "fuzz/support/WideText.h"
#include "suite/logger/LogText.h"

namespace {

bool IsControl(wchar_t c) {
    return c < 0x20 || (c >= 0x7F && c < 0xA0) || c == 0x2028 || c == 0x2029;
}

// The text as the line must say it, made unit by unit.
std::wstring Cleaned(std::wstring text) {
    text.resize(std::min(text.size(), suite::kLongestLogText));
    for (std::size_t at = text.find(L"\r\n"); at != text.npos; at = text.find(L"\r\n", at)) {
        text.erase(at, 1);
    }
    std::replace_if(text.begin(), text.end(), IsControl, L' ');
    return text;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input in(data, size);
    const std::size_t times = in.Any<std::uint8_t>() < 250 ? 1 : in.Any<std::uint16_t>() % 2000;
    suite::LogTime time;
    int level = 4;
    unsigned long thread = 1234;
    if (in.Flag()) {
        for (int* field :
             {&time.year, &time.month, &time.day, &time.hour, &time.minute, &time.second, &time.millisecond, &level}) {
            *field = in.Any<std::int32_t>();
        }
        thread = in.Any<unsigned long>();
    }
    const std::wstring piece = WideText(in.Rest());
    std::wstring text;
    for (std::size_t i = 0; i < times && text.size() <= 2 * suite::kLongestLogText; ++i) {
        text += piece;
    }
    const std::string line = suite::FormatLogLine(time, level, thread, text);
    const std::string mark = " [L" + std::to_string(level) + "] [" + std::to_string(thread) + "] ";
    const std::size_t begin = line.find(mark);
    REQUIRE(begin != line.npos && begin >= 23);
    const std::string expected = suite::ToUtf8(Cleaned(text)) + (text.size() > suite::kLongestLogText ? "...\n" : "\n");
    REQUIRE(line.substr(begin + mark.size()) == expected);
    REQUIRE(suite::ToUtf8(suite::FromUtf8(line)) == line);
    REQUIRE(std::count(line.begin(), line.end(), '\n') == 1);
    return 0;
}
