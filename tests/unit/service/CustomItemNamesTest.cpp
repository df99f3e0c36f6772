#include "service/pictures/CustomItemNames.h"

#include <gtest/gtest.h>

namespace CustomItemNames = pictures::CustomItemNames;

namespace {

using NameMap = std::map<std::wstring, std::wstring>;

TEST(CustomItemNamesTest, TakesTheFirstFreeNumber) {
    EXPECT_EQ(CustomItemNames::NextFree({}), L"custom_background_btn_0");
    const NameMap taken{{L"custom_background_btn_0", L""},
                        {L"custom_background_btn_1", L""},
                        {L"custom_background_btn_3", L""},
                        {L"custom_background_btn_2_video", L""}};
    EXPECT_EQ(CustomItemNames::NextFree(taken), L"custom_background_btn_2");
}

TEST(CustomItemNamesTest, GivesTheLastNameWhenAllAreTaken) {
    NameMap taken;
    for (int n = 0; n < 32; ++n) {
        taken[CustomItemNames::NextFree(taken)] = L"path";
    }
    EXPECT_EQ(taken.size(), 32u);
    EXPECT_EQ(CustomItemNames::NextFree(taken), L"custom_background_btn_31");
}

TEST(CustomItemNamesTest, CutsAPartsNameBackToTheItem) {
    EXPECT_EQ(CustomItemName(L"custom_background_btn_7_del"), L"custom_background_btn_7");
    EXPECT_EQ(CustomItemName(L"custom_background_btn_7_item"), L"custom_background_btn_7");
    EXPECT_EQ(CustomItemName(L"custom_background_btn_7_bk"), L"custom_background_btn_7");
    EXPECT_EQ(CustomItemName(L"custom_background_btn_7"), L"custom_background_btn_7");
}

TEST(CustomItemNamesTest, LeavesABadgesNameWhole) {
    EXPECT_EQ(CustomItemName(L"custom_background_btn_7_video"), L"custom_background_btn_7_video");
}

TEST(CustomItemNamesTest, CutsAtTheFirstOfTheFirstSuffixFound) {
    EXPECT_EQ(CustomItemName(L"custom_background_btn_1_item_del_del"), L"custom_background_btn_1_item");
    EXPECT_EQ(CustomItemName(L"custom_background_btn_1_bk_item"), L"custom_background_btn_1_bk");
    EXPECT_EQ(CustomItemName(L"my_del_custom_background_btn_1"), L"my");
}

TEST(CustomItemNamesTest, OtherNamesBelongToNoItem) {
    for (const wchar_t* name : {L"", L"custom_background_btn", L"open_camera_btn", L"x_del", L"preview_item"}) {
        EXPECT_EQ(CustomItemName(name), L"") << name;
    }
}

TEST(CustomItemNames, AnItemNameIsThePrefixAndANumber) {
    for (const wchar_t* name : {L"custom_background_btn_0", L"custom_background_btn_31"})
        EXPECT_TRUE(CustomItemNames::IsItemName(name)) << name;
    for (const wchar_t* name :
         {L"", L"custom_background_btn_", L"custom_background_btn_1_del", L"custom_background_btn",
          L"none_background_btn", L"custom_background_btn_-1", L" custom_background_btn_1", L"custom_background_btn_32",
          L"custom_background_btn_007", L"custom_background_btn_4294967296"})
        EXPECT_FALSE(CustomItemNames::IsItemName(name)) << name;
}

TEST(CustomItemNames, OnlyAPictureOfTheItemsNameIsItsPicture) {
    EXPECT_TRUE(CustomItemNames::IsPictureOf(L"custom_background_btn_1", L"C:\\x\\custom_background_btn_1.jpg"));
    EXPECT_TRUE(CustomItemNames::IsPictureOf(L"custom_background_btn_1", L"custom_background_btn_1.jpg"));
    for (const wchar_t* path : {L"", L"C:\\x\\custom_background_btn_11.jpg", L"C:\\x\\holiday.jpg",
                                L"C:\\custom_background_btn_1.jpg\\x.jpg", L"C:\\x\\custom_background_btn_1.mp4"})
        EXPECT_FALSE(CustomItemNames::IsPictureOf(L"custom_background_btn_1", path)) << path;
}

}  // namespace
