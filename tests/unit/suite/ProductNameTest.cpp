#include "suite/product/ProductName.h"

#include <gtest/gtest.h>

using suite::ElementNameOf;

TEST(ProductNameTest, KeepsWhatAnElementNameMayHold) {
    EXPECT_EQ(ElementNameOf("Notora-15_v2.1"), "Notora-15_v2.1");
    EXPECT_EQ(ElementNameOf(" Notora 15 (Gen 2)/<x>&\"\n"), "Notora15Gen2x");
    EXPECT_EQ(ElementNameOf("\xC3\x84\xE6\x97\xA5z"), "z");
    EXPECT_EQ(ElementNameOf(std::string("a\0b", 3)), "ab");
    EXPECT_EQ(ElementNameOf("AZ@[az`{09/:"), "AZaz09") << "and none of their neighbours";
}

TEST(ProductNameTest, BeginsWithALetterOrAnUnderscore) {
    EXPECT_EQ(ElementNameOf("20XW"), "_20XW");
    EXPECT_EQ(ElementNameOf("(-x"), "_-x");
    EXPECT_EQ(ElementNameOf("."), "_.");
    EXPECT_EQ(ElementNameOf("_x"), "_x");
}

TEST(ProductNameTest, NothingStaysEmpty) {
    EXPECT_EQ(ElementNameOf(""), "");
    EXPECT_EQ(ElementNameOf(" /\xFF"), "");
}
