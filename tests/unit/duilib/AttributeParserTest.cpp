#include "markup/AttributeParser.h"

#include <gmock/gmock.h>

namespace DuiLib {
namespace {

using testing::ElementsAre;
using testing::Pair;

TEST(AttributeParser, NumbersAreDecimalWithASign) {
    EXPECT_EQ(ParseInt(L"0"), 0);
    EXPECT_EQ(ParseInt(L" 42\t"), 42);
    EXPECT_EQ(ParseInt(L"\r\n42\r\n"), 42);
    EXPECT_EQ(ParseInt(L"-7"), -7);
    EXPECT_EQ(ParseInt(L"+7"), 7);
    EXPECT_EQ(ParseInt(L"007"), 7);
    EXPECT_EQ(ParseInt(L"1000000"), 1'000'000);
    EXPECT_EQ(ParseInt(L"-1000000"), -1'000'000);
}

TEST(AttributeParser, WhatIsNotWhollyANumberIsNone) {
    for (const wchar_t* text : {L"", L" ", L"-", L"+-1", L"1 2", L"12px", L"0x10", L"1.5", L"1000001", L"-1000001",
                                L"99999999999999999999", L"\x0661", L"1/", L"1:"}) {
        EXPECT_EQ(ParseInt(text), std::nullopt);
    }
}

TEST(AttributeParser, TruthIsOneOfTwoWords) {
    EXPECT_EQ(ParseBool(L"true"), true);
    EXPECT_EQ(ParseBool(L"false"), false);
    for (const wchar_t* text : {L"", L"True", L"1", L" true", L"yes"}) {
        EXPECT_EQ(ParseBool(text), std::nullopt);
    }
}

TEST(AttributeParser, RectanglesAndSizesCountTheirNumbers) {
    EXPECT_EQ(ParseRect(L"1,2,3,4"), (Rect{1, 2, 3, 4}));
    EXPECT_EQ(ParseRect(L" -1 , 2 ,3 , 4 "), (Rect{-1, 2, 3, 4}));
    EXPECT_EQ(ParseSize(L"640,480"), (Size{640, 480}));
    EXPECT_EQ(ParseSize(L"0,0"), (Size{0, 0}));
    for (const wchar_t* text : {L"", L"1", L"1,2,3", L"1,2,3,4,5", L"1,2,3,", L",1,2,3", L"1,2,,4", L"1;2;3;4"}) {
        EXPECT_EQ(ParseRect(text), std::nullopt);
    }
    for (const wchar_t* text : {L"", L"1", L"1,", L"-1,2", L"1,-2", L"1,2,3"}) {
        EXPECT_EQ(ParseSize(text), std::nullopt);
    }
}

TEST(AttributeParser, ColoursHaveAlphaFirst) {
    EXPECT_EQ(ParseColor(L"#80FF0001"), 0x80FF0001u);
    EXPECT_EQ(ParseColor(L"#ff0001"), 0xFFFF0001u);
    EXPECT_EQ(ParseColor(L"0x053EC600"), 0x053EC600u);
    EXPECT_EQ(ParseColor(L"0X053EC600"), 0x053EC600u);
    EXPECT_EQ(ParseColor(L"#01234567"), 0x01234567u);
    EXPECT_EQ(ParseColor(L"#89abcdef"), 0x89ABCDEFu);
    EXPECT_EQ(ParseColor(L"#89ABCDEF"), 0x89ABCDEFu);
    EXPECT_EQ(ParseColor(L" #00000000 "), 0u);
    for (const wchar_t* text :
         {L"", L"#", L"red", L"#12345", L"#1234567", L"#123456789", L"#GG000000", L"0x123456", L"12345678", L"# FF0000",
          // the neighbours of the digits
          L"#0000000/", L"#0000000:", L"#0000000@", L"#0000000G", L"#0000000`", L"#0000000g"}) {
        EXPECT_EQ(ParseColor(text), std::nullopt);
    }
}

TEST(AttributeParser, ListsTakeBothQuotes) {
    EXPECT_THAT(*ParseAttributeList(LR"( font="13" text='a "b" c'  bkcolor = "#FF000000" )"),
                ElementsAre(Pair(L"font", L"13"), Pair(L"text", L"a \"b\" c"), Pair(L"bkcolor", L"#FF000000")));
    EXPECT_THAT(*ParseAttributeList(L""), ElementsAre());
    EXPECT_THAT(*ParseAttributeList(L" \n"), ElementsAre());
    EXPECT_THAT(*ParseAttributeList(L"a=''"), ElementsAre(Pair(L"a", L"")));
    EXPECT_THAT(*ParseAttributeList(L"azAZ09_-=''"), ElementsAre(Pair(L"azAZ09_-", L"")));
}

TEST(AttributeParser, AQuoteWithinAWordBelongsToTheValue) {
    EXPECT_THAT(*ParseAttributeList(LR"(file='C:\O'Neil\a b.jpg' reverse='true')"),
                ElementsAre(Pair(L"file", LR"(C:\O'Neil\a b.jpg)"), Pair(L"reverse", L"true")));
}

TEST(AttributeParser, MalformedListsAreNone) {
    for (const wchar_t* text : {L"a", L"a=", L"a=b", L"a='b", L"=\"b\"", L"a=\"b\"c=\"d\" e", L"a==\"b\"", L"a='b' c",
                                // the neighbours of what a name may hold
                                L"a/=''", L"a:=''", L"a@=''", L"a[=''", L"a`=''", L"a{=''", L"a.=''", L"\u00e4=''"}) {
        EXPECT_EQ(ParseAttributeList(text), std::nullopt);
    }
}

}  // namespace
}  // namespace DuiLib
