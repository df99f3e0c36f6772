#include "suite/report/EventLine.h"

#include <gtest/gtest.h>

#include <limits>

using suite::FieldEventLine;
using suite::TextEventLine;

namespace {

constexpr suite::UtcTime kTime{2026, 1, 2, 3, 4, 5, 6};
const std::string kBegin = R"({"time":"2026-01-02T03:04:05.006Z","event":)";

}  // namespace

TEST(EventLineTest, TextEvents) {
    EXPECT_EQ(TextEventLine(kTime, "631770001", "open camera"), kBegin + R"("631770001","text":"open camera"})");
    EXPECT_EQ(TextEventLine(kTime, "1", ""), kBegin + R"("1","text":""})");
}

TEST(EventLineTest, NothingBreaksTheLineOrTheQuotes) {
    EXPECT_EQ(TextEventLine(kTime, "\"1\n", "a\"b\\c/\r\n\t"),
              kBegin + R"("\"1\u000a","text":"a\"b\\c/\u000d\u000a\u0009"})");
    EXPECT_EQ(TextEventLine(kTime, "1", std::string("a\0b\x7F", 4)), kBegin + R"("1","text":"a\u0000b\u007f"})");
    EXPECT_EQ(TextEventLine(kTime, "1", "\xE2\x80\xA8\xE2\x80\xA9"), kBegin + R"("1","text":"\u2028\u2029"})");
}

TEST(EventLineTest, OtherScriptsStayAndDamagedBytesAreReplaced) {
    EXPECT_EQ(TextEventLine(kTime, "1", "\xE6\x97\xA5\xF0\x9F\x98\x80"),
              kBegin + "\"1\",\"text\":\"\xE6\x97\xA5\xF0\x9F\x98\x80\"}");
    EXPECT_EQ(TextEventLine(kTime, "1", "\xFFx\xE6\x97"), kBegin + "\"1\",\"text\":\"\xEF\xBF\xBDx\xEF\xBF\xBD\"}");
}

TEST(EventLineTest, FieldsKeepTheirOrder) {
    EXPECT_EQ(FieldEventLine(kTime, 992612801, {{"STATUS", 1}, {"SMOOTH", -5}, {"A\"", 2147483647}}),
              kBegin + R"("992612801","fields":{"STATUS":1,"SMOOTH":-5,"A\"":2147483647}})");
    EXPECT_EQ(FieldEventLine(kTime, -1, {}), kBegin + R"("-1","fields":{}})");
}

TEST(EventLineTest, NoTimeCutsTheLine) {
    constexpr int kLeast = std::numeric_limits<int>::min();
    const suite::UtcTime time{kLeast, kLeast, kLeast, kLeast, kLeast, kLeast, kLeast};
    const std::string number = std::to_string(kLeast);
    EXPECT_EQ(TextEventLine(time, "1", ""), "{\"time\":\"" + number + "-" + number + "-" + number + "T" + number + ":" +
                                                number + ":" + number + "." + number +
                                                "Z\",\"event\":\"1\",\"text\":\"\"}");
}
