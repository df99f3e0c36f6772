#include "suite/xml/XmlText.h"

#include <gtest/gtest.h>

using namespace std::string_literals;
using suite::DecodeXmlBytes;

TEST(XmlTextTest, ReadsUtf8WithAndWithoutItsMark) {
    EXPECT_EQ(DecodeXmlBytes(""), L"");
    EXPECT_EQ(DecodeXmlBytes("\xEF\xBB\xBF"), L"");
    EXPECT_EQ(DecodeXmlBytes("<a>\t\r\n\xE6\x97\xA5\xF0\x9F\x98\x80"), L"<a>\t\r\n\u65e5\U0001F600");
    EXPECT_EQ(DecodeXmlBytes("\xEF\xBB\xBF<a>"), L"<a>");
    EXPECT_EQ(DecodeXmlBytes("\xEF\xBF\xBD"), L"\ufffd");
}

TEST(XmlTextTest, ReadsUtf16OfBothOrders) {
    EXPECT_EQ(DecodeXmlBytes("\xFF\xFE"), L"");
    EXPECT_EQ(DecodeXmlBytes("\xFF\xFE<\0\xE5\x65"s), L"<\u65e5");
    EXPECT_EQ(DecodeXmlBytes("\xFE\xFF\0<\x65\xE5"s), L"<\u65e5");
    EXPECT_EQ(DecodeXmlBytes("\xFF\xFE\xFD\xFF"s), L"\ufffd");
}

TEST(XmlTextTest, RefusesWhatIsNoText) {
    for (const std::string& bytes : {
             "\0"s, "a\0b"s, "\x01"s, "\x1F"s, "\x80"s, "\xC3"s, "\xC3("s, "\xC0\xAF"s, "\xED\xA0\x80"s,
             "\xF4\x90\x80\x80"s, "\xEF\xBF\xBE"s, "\xEF\xB7\x90"s, "\xF0\x9F\xBF\xBF"s, "\xEF\xBB"s,
             "<\0a\0/\0>\0"s,                                                       // UTF-16 without its mark
             "\xFF\xFE<"s, "\xFF\xFE\0\0"s, "\xFF\xFE\x3D\xD8"s, "\xFE\xFF\xDE\0"s  // half a unit, NUL, half a pair
         }) {
        EXPECT_EQ(DecodeXmlBytes(bytes), std::nullopt) << testing::PrintToString(bytes);
    }
}
