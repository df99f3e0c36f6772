#include "text/LanguageFallback.h"

#include <gtest/gtest.h>

namespace DuiLib {
namespace {

const std::vector<std::wstring> kAvailable{L"en_US", L"pt_PT", L"pt_BR", L"zh_TW", L"zh_CN", L"sr_Latn_RS"};

TEST(LanguageFallback, ExactWithoutRegardToCaseAndSeparator) {
    EXPECT_EQ(ChooseLanguage(L"pt_PT", kAvailable), L"pt_PT");
    EXPECT_EQ(ChooseLanguage(L"PT-pt", kAvailable), L"pt_PT");
}

TEST(LanguageFallback, OtherRegionFirstByName) {
    EXPECT_EQ(ChooseLanguage(L"pt_AO", kAvailable), L"pt_BR");
    EXPECT_EQ(ChooseLanguage(L"pt", kAvailable), L"pt_BR");
    EXPECT_EQ(ChooseLanguage(L"sr_Cyrl_RS", kAvailable), L"sr_Latn_RS");
}

TEST(LanguageFallback, ChineseByScript) {
    EXPECT_EQ(ChooseLanguage(L"zh_HK", kAvailable), L"zh_TW");
    EXPECT_EQ(ChooseLanguage(L"zh_MO", kAvailable), L"zh_TW");
    EXPECT_EQ(ChooseLanguage(L"zh_Hant_SG", kAvailable), L"zh_TW");
    EXPECT_EQ(ChooseLanguage(L"zh_Hans_HK", kAvailable), L"zh_CN");
    EXPECT_EQ(ChooseLanguage(L"zh_SG", kAvailable), L"zh_CN");
    EXPECT_EQ(ChooseLanguage(L"zh", kAvailable), L"zh_CN");
    EXPECT_EQ(ChooseLanguage(L"zh_HK", {L"en_US", L"zh_CN"}), L"zh_CN");
}

TEST(LanguageFallback, EnglishThenNothing) {
    EXPECT_EQ(ChooseLanguage(L"fi_FI", kAvailable), L"en_US");
    EXPECT_EQ(ChooseLanguage(L"", kAvailable), L"en_US");
    EXPECT_EQ(ChooseLanguage(L"fi_FI", {L"de_DE"}), L"");
    EXPECT_EQ(ChooseLanguage(L"fi_FI", {}), L"");
    // A language that only begins alike is another language.
    EXPECT_EQ(ChooseLanguage(L"z_CN", kAvailable), L"en_US");
}

}  // namespace
}  // namespace DuiLib
