#include "suite/common/Utf8.h"

#include <gtest/gtest.h>

using suite::FromUtf8;
using suite::ToUtf8;

namespace {

const std::string kBad = "\xEF\xBF\xBD";

}  // namespace

TEST(Utf8Test, TextOfEveryLengthOfCodeGoesBothWays) {
    const std::wstring wide = L"a\u007f\u0080\u07ff\u0800\uffff\U00010000\U0010ffff";
    const std::string narrow = "a\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80\xEF\xBF\xBF\xF0\x90\x80\x80\xF4\x8F\xBF\xBF";
    EXPECT_EQ(ToUtf8(wide), narrow);
    EXPECT_EQ(FromUtf8(narrow), wide);
    EXPECT_EQ(ToUtf8(L""), "");
    EXPECT_EQ(FromUtf8(""), L"");
    EXPECT_EQ(ToUtf8(std::wstring(1, L'\0')), std::string(1, '\0'));
}

TEST(Utf8Test, LoneSurrogatesBecomeTheReplacementCharacter) {
    const auto unit = [](unsigned value) { return std::wstring(1, static_cast<wchar_t>(value)); };
    EXPECT_EQ(ToUtf8(unit(0xD83D)), kBad);
    EXPECT_EQ(ToUtf8(unit(0xDE00) + L"x"), kBad + "x");
    EXPECT_EQ(ToUtf8(unit(0xD83D) + L"x"), kBad + "x");
    EXPECT_EQ(ToUtf8(unit(0xD83D) + unit(0xD83D) + unit(0xDE00)), kBad + "\xF0\x9F\x98\x80");
}

TEST(Utf8Test, DamagedBytesBecomeTheReplacementCharacter) {
    const std::wstring bad = L"\ufffd";
    EXPECT_EQ(FromUtf8("\x80"), bad);
    EXPECT_EQ(FromUtf8("\xC0\x80"), bad + bad);
    EXPECT_EQ(FromUtf8("\xE2\x82"), bad);
    EXPECT_EQ(FromUtf8("\xE2\x82x"), bad + L"x");
    EXPECT_EQ(FromUtf8("\xE0\x80\x80"), bad);
    EXPECT_EQ(FromUtf8("\xED\xA0\x80"), bad);
    EXPECT_EQ(FromUtf8("\xF0\x8F\xBF\xBF"), bad);
    EXPECT_EQ(FromUtf8("\xF4\x90\x80\x80"), bad);
    EXPECT_EQ(FromUtf8("\xF5x\xFF"), bad + L"x" + bad);
}
