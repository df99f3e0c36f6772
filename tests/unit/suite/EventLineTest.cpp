#include "suite/report/EventLine.h"

#include <gtest/gtest.h>

using namespace std::string_literals;

namespace {

constexpr suite::UtcTime kTime{2026, 1, 2, 3, 4, 5, 6};

std::string Text(const std::string& text) {
    const std::string begin = R"({"time":"2026-01-02T03:04:05.006Z","event":"1","text":")";
    const std::string line = suite::TextEventLine(kTime, "1", text);
    EXPECT_EQ(line.substr(0, begin.size()), begin);
    EXPECT_EQ(line.substr(line.size() - 2), "\"}");
    return line.substr(begin.size(), line.size() - begin.size() - 2);
}

}  // namespace

TEST(EventLineTest, FormsATextEvent) {
    EXPECT_EQ(suite::TextEventLine({2026, 11, 21, 9, 15, 30, 123}, "631770001", "open camera"),
              R"({"time":"2026-11-21T09:15:30.123Z","event":"631770001","text":"open camera"})");
}

TEST(EventLineTest, FormsAFieldEventInTheOrderOfItsFields) {
    EXPECT_EQ(
        suite::FieldEventLine(kTime, 992612801, {{"STATUS", 1}, {"EYE", -5}, {"A\"", 2147483647}}),
        R"({"time":"2026-01-02T03:04:05.006Z","event":"992612801","fields":{"STATUS":1,"EYE":-5,"A\"":2147483647}})");
    EXPECT_EQ(suite::FieldEventLine(kTime, -1, {}), R"({"time":"2026-01-02T03:04:05.006Z","event":"-1","fields":{}})");
}

TEST(EventLineTest, EscapesWhatWouldBreakTheLine) {
    EXPECT_EQ(Text("a\"b\\c/"), R"(a\"b\\c/)");
    EXPECT_EQ(Text("a\r\n\tb\0c\x7F"s), R"(a\u000d\u000a\u0009b\u0000c\u007f)");
    EXPECT_EQ(Text("\xE2\x80\xA8\xE2\x80\xA9"), R"(\u2028\u2029)");
    EXPECT_EQ(Text("\xC3\xA4\xE6\x97\xA5\xF0\x9F\x98\x80"), "\xC3\xA4\xE6\x97\xA5\xF0\x9F\x98\x80");
    EXPECT_EQ(Text("a\xFF"), "a\xEF\xBF\xBD");
    EXPECT_EQ(Text(""), "");
}
