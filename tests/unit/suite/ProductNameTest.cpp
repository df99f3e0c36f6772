#include "suite/product/ProductName.h"

#include <gtest/gtest.h>

using suite::ElementNameOf;

TEST(ProductNameTest, AProductNameBecomesAnElementName) {
    EXPECT_EQ(ElementNameOf("Notebook 14-x_2.1"), "Notebook14-x_2.1");
    EXPECT_EQ(ElementNameOf(" To be filled\tby O.E.M.! "), "TobefilledbyO.E.M.");
    EXPECT_EQ(ElementNameOf("82A1 Pro 14"), "_82A1Pro14");
    EXPECT_EQ(ElementNameOf("-x"), "_-x");
    EXPECT_EQ(ElementNameOf("_x"), "_x");
    EXPECT_EQ(ElementNameOf("<a:b/>\xE6\x97\xA5\xC3\xA9"), "ab");
    EXPECT_EQ(ElementNameOf(""), "");
    EXPECT_EQ(ElementNameOf(" \xE6\x97\xA5 "), "");
}
