#include "suite/product/ProductText.h"

#include <gtest/gtest.h>

using suite::ElementNameOf;
using suite::LanguageTagOf;

TEST(ProductTextTest, AProductNameBecomesAnElementName) {
    EXPECT_EQ(ElementNameOf(L"Notebook 14-x_2.1"), "Notebook14-x_2.1");
    EXPECT_EQ(ElementNameOf(L" To be filled\tby O.E.M.! "), "TobefilledbyO.E.M.");
    EXPECT_EQ(ElementNameOf(L"82A1 Pro 14"), "_82A1Pro14");
    EXPECT_EQ(ElementNameOf(L"-x"), "_-x");
    EXPECT_EQ(ElementNameOf(L"_x"), "_x");
    EXPECT_EQ(ElementNameOf(L"<a:b/>\u65e5\u00e9"), "ab");
    EXPECT_EQ(ElementNameOf(L""), "");
    EXPECT_EQ(ElementNameOf(L" \u65e5 "), "");
    EXPECT_EQ(ElementNameOf(std::wstring(1000, L'n')), std::string(128, 'n'));
    EXPECT_EQ(ElementNameOf(std::wstring(1000, L'1')), "_" + std::string(127, '1'));
}

TEST(ProductTextTest, ALocaleNameBecomesALanguageTag) {
    EXPECT_EQ(LanguageTagOf(L"zh-CN"), L"zh-CN");
    EXPECT_EQ(LanguageTagOf(L"de"), L"de");
    EXPECT_EQ(LanguageTagOf(L"fil-PH"), L"fil-PH");
    EXPECT_EQ(LanguageTagOf(L"sr-Latn-RS"), L"sr-Latn-RS");
    EXPECT_EQ(LanguageTagOf(L"es-419"), L"es-419");
    EXPECT_EQ(LanguageTagOf(L"ca-ES-valencia"), L"ca-ES-valencia");
    EXPECT_EQ(LanguageTagOf(L"de-DE_phoneb"), L"de-DE");
    for (const wchar_t* none : {L"", L"d", L"d-DE", L"-de", L"de-", L"de--DE", L"12-DE", L"..\\x", L"de/DE", L"de DE",
                                L"\u00e4\u00e4", L"abcd", L"de-123456789", L"a-b-c-d-e", L"de-a-b-c-d", L"_de"}) {
        EXPECT_EQ(LanguageTagOf(none), L"") << testing::PrintToString(std::wstring(none));
    }
}
