#include "markup/ImageAttribute.h"

#include <gtest/gtest.h>

using namespace DuiLib;

namespace {

TEST(ImageAttribute, APlainPathIsAFile) {
    const auto image = ParseImageAttribute(L" drawable/a b.png ");
    ASSERT_TRUE(image);
    EXPECT_EQ(image->file, L"drawable/a b.png");
    EXPECT_FALSE(image->sourceDip || image->destDip || image->reverse);
    EXPECT_EQ(image->fade, 255);
    EXPECT_EQ(image->cornerDip, Rect{});
}

TEST(ImageAttribute, ReadsEveryPart) {
    const auto image = ParseImageAttribute(
        L"file='drawable/a.png' source='1,2,30,40' dest='-5, 6,7,8' corner='4,5,6,7' fade='128' reverse='true'");
    ASSERT_TRUE(image);
    EXPECT_EQ(image->file, L"drawable/a.png");
    EXPECT_EQ(image->sourceDip, (Rect{1, 2, 30, 40}));
    EXPECT_EQ(image->destDip, (Rect{-5, 6, 7, 8}));
    EXPECT_EQ(image->cornerDip, (Rect{4, 5, 6, 7}));
    EXPECT_EQ(image->fade, 128);
    EXPECT_TRUE(image->reverse);
}

TEST(ImageAttribute, TheSmallestAndTheLargestValues) {
    const auto image = ParseImageAttribute(L"file='a' source='0,0,1,1' corner='0,0,0,0' fade='0' reverse='false'");
    ASSERT_TRUE(image);
    EXPECT_EQ(image->sourceDip, (Rect{0, 0, 1, 1}));
    EXPECT_EQ(image->cornerDip, Rect{});
    EXPECT_EQ(image->fade, 0);
    EXPECT_FALSE(image->reverse);
    EXPECT_EQ(ParseImageAttribute(L"file='a' fade='255'")->fade, 255);
}

TEST(ImageAttribute, EitherQuoteMakesAList) {
    const auto image = ParseImageAttribute(LR"(file="drawable/a.png" fade="7")");
    ASSERT_TRUE(image);
    EXPECT_EQ(image->file, L"drawable/a.png");
    EXPECT_EQ(image->fade, 7);
}

TEST(ImageAttribute, BlanksAroundAFileAreNotItsName) {
    EXPECT_EQ(ParseImageAttribute(L"\t\r\n a.png\t\r\n ")->file, L"a.png");
    EXPECT_EQ(ParseImageAttribute(L"file=' a.png\t'")->file, L"a.png");
}

TEST(ImageAttribute, AFileMayHaveAQuoteInItsName) {
    const auto image = ParseImageAttribute(L"file='C:\\Users\\O'Neil\\a.jpg' reverse='true'");
    ASSERT_TRUE(image);
    EXPECT_EQ(image->file, L"C:\\Users\\O'Neil\\a.jpg");
    EXPECT_TRUE(image->reverse);
}

TEST(ImageAttribute, AFileMayHaveAnEqualsSign) {
    const auto image = ParseImageAttribute(L"C:\\a=b.png");
    ASSERT_TRUE(image);
    EXPECT_EQ(image->file, L"C:\\a=b.png");
}

TEST(ImageAttribute, RefusesWhatItDoesNotUnderstand) {
    for (const wchar_t* text : {L"",
                                L"  ",
                                L"file=''",
                                L"reverse='true'",
                                L"file='a' colour='1'",
                                L"file='a' source='1,2,3'",
                                L"file='a' source='5,5,5,9'",
                                L"file='a' source='5,5,9,5'",
                                L"file='a' source='-1,0,5,9'",
                                L"file='a' corner='1,2,3'",
                                L"file='a' corner='-1,2,3,4'",
                                L"file='a' corner='1,-2,3,4'",
                                L"file='a' corner='1,2,-3,4'",
                                L"file='a' corner='1,2,3,-4'",
                                L"file='a' dest='1,2,3'",
                                L"file=' '",
                                L"file='a' fade=''",
                                L"file='a' fade='256'",
                                L"file='a' fade='-1'",
                                L"file='a' reverse='yes'",
                                L"file='a",
                                L"file='a' x"}) {
        EXPECT_FALSE(ParseImageAttribute(text)) << testing::PrintToString(std::wstring(text));
    }
}

}  // namespace
