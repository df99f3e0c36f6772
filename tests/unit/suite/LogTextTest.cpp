#include "suite/logger/LogText.h"

#include <gtest/gtest.h>

using suite::FormatLogLine;

namespace {

std::string TextOf(const std::wstring& text) {
    const std::string prefix = "2026-01-02 03:04:05.006 [L3] [7] ";
    const std::string line = FormatLogLine({2026, 1, 2, 3, 4, 5, 6}, 3, 7, text);
    EXPECT_EQ(line.substr(0, prefix.size()), prefix);
    EXPECT_EQ(line.back(), '\n');
    return line.substr(prefix.size(), line.size() - prefix.size() - 1);
}

}  // namespace

TEST(LogTextTest, FormsTheLine) {
    EXPECT_EQ(FormatLogLine({2026, 11, 21, 10, 15, 30, 123}, 4, 4294967295, L"message(Class::Function)"),
              "2026-11-21 10:15:30.123 [L4] [4294967295] message(Class::Function)\n");
}

TEST(LogTextTest, NoTextBreaksTheLine) {
    EXPECT_EQ(TextOf(L"a\nb\rc\r\nd\n\re\r"), "a b c d  e ");
    EXPECT_EQ(TextOf(L"\u2028\u2029\u0085\t\v\f\x1b[31m"), "       [31m");
    EXPECT_EQ(TextOf(std::wstring(L"a\0b", 3)), "a b");
    EXPECT_EQ(TextOf(L""), "");
}

TEST(LogTextTest, KeepsOtherCharacters) {
    EXPECT_EQ(TextOf(L"\u00e4\u65e5\U0001F600 %s {}"), "\xC3\xA4\xE6\x97\xA5\xF0\x9F\x98\x80 %s {}");
}

TEST(LogTextTest, CutsAnEndlessText) {
    EXPECT_EQ(TextOf(std::wstring(suite::kLongestLogText, L'x')), std::string(suite::kLongestLogText, 'x'));
    EXPECT_EQ(TextOf(std::wstring(suite::kLongestLogText + 1, L'x')), std::string(suite::kLongestLogText, 'x') + "...");
}
