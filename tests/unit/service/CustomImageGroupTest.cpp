#include "service/CustomImageGroup.h"

#include <gtest/gtest.h>

namespace {

using CustomImageGroup::Parse;
using CustomImageGroup::Serialise;
using Records = std::vector<CustomImageRecord>;

const CustomImageRecord kImage{L"custom_background_btn_0", 0, 14, L"C:\\u\\0.jpg", L"D:\\\u5916\u89c2.PNG"};
const CustomImageRecord kVideo{L"custom_background_btn_1", 1, 15, L"C:\\u\\1.jpg", L"D:\\clip.mp4"};

TEST(CustomImageGroupTest, WritesTheIndexBeforeTheKindAndEndsEveryRecord) {
    EXPECT_EQ(Serialise({kVideo}),
              L"custom_background_btn_1[(&,f!=)]15[(&,f!=)]1[(&,f!=)]C:\\u\\1.jpg[(&,f!=)]D:\\clip.mp4[(&;i!-)]");
    EXPECT_EQ(Serialise({}), L"");
}

TEST(CustomImageGroupTest, ReadsWhatItWrote) {
    const Records records{kImage, kVideo, {L"", -7, -2147483647 - 1, L"", L""}};
    EXPECT_EQ(Parse(Serialise(records)), records);
    EXPECT_EQ(Parse(L""), Records{});
}

TEST(CustomImageGroupTest, ReadsALastRecordWithoutItsSeparator) {
    std::wstring text = Serialise({kImage, kVideo});
    text.resize(text.size() - CustomImageGroup::kItemSeparator.size());
    EXPECT_EQ(Parse(text), (Records{kImage, kVideo}));
}

TEST(CustomImageGroupTest, DropsAPieceWithFourFieldsAndKeepsTheOthers) {
    const std::wstring damaged = L"custom_background_btn_5[(&,f!=)]1[(&,f!=)]0[(&,f!=)]C:\\u\\5.jpg[(&;i!-)]";
    EXPECT_EQ(Parse(Serialise({kImage}) + damaged + Serialise({kVideo})), (Records{kImage, kVideo}));
}

TEST(CustomImageGroupTest, DropsEmptyPieces) {
    EXPECT_EQ(Parse(L"[(&;i!-)][(&;i!-)]" + Serialise({kImage}) + L"[(&;i!-)]"), Records{kImage});
}

TEST(CustomImageGroupTest, DropsPiecesWithoutDecimalNumbers) {
    for (const wchar_t* number : {L"", L"x", L"1x", L"1:", L"1/", L" 1", L"+1", L"-", L"0x1", L"2147483648",
                                  L"-2147483649", L"99999999999999999999999999"}) {
        const std::wstring field = L"[(&,f!=)]";
        EXPECT_EQ(Parse(L"a" + field + number + field + L"0" + field + L"t" + field + L"s"), Records{}) << number;
        EXPECT_EQ(Parse(L"a" + field + L"0" + field + number + field + L"t" + field + L"s"), Records{}) << number;
    }
}

TEST(CustomImageGroupTest, IgnoresFieldsAfterTheFifth) {
    const std::wstring text = L"a[(&,f!=)]2[(&,f!=)]1[(&,f!=)]t[(&,f!=)]s[(&,f!=)]more[(&;i!-)]";
    EXPECT_EQ(Parse(text), (Records{{L"a", 1, 2, L"t", L"s"}}));
}

TEST(CustomImageGroupTest, APartOfASeparatorIsText) {
    const Records records{{L"a", 0, 0, L"[(&;i!-", L"[(&,f!="}};
    EXPECT_EQ(Parse(Serialise(records)), records);
}

TEST(CustomImageGroupTest, WhatTheProgramCouldNotHaveWrittenIsKeptAsItIs) {
    const std::wstring four = L"custom_background_btn_5[(&,f!=)]1[(&,f!=)]0[(&,f!=)]C:\\u\\5.jpg[(&;i!-)]";
    const std::wstring again = Serialise({{kImage.name, 0, 3, L"C:\\x.jpg", L"D:\\x.png"}});
    const std::wstring others = Serialise({{L"custom_background_btn_32", 0, 0, L"t", L"s"},
                                           {L"custom_background_btn_01", 0, 0, L"t", L"s"},
                                           {L"none_background_btn", 0, 0, L"t", L"s"},
                                           {L"custom_background_btn_2", 2, 0, L"t", L"s"},
                                           {L"custom_background_btn_2", -1, 0, L"t", L"s"}});
    const CustomImageGroup::Contents contents = CustomImageGroup::Read(
        four + Serialise({kImage}) + again + L"[(&;i!-)]" + others + Serialise({kVideo}) + L"cut off");
    EXPECT_EQ(contents.records, (Records{kImage, kVideo}));
    EXPECT_EQ(contents.rest, four + again + others + L"cut off[(&;i!-)]");
    EXPECT_EQ(CustomImageGroup::Read(Serialise(contents.records) + contents.rest), contents);
}

TEST(CustomImageGroupTest, ThirtyTwoRecordsAreUsed) {
    Records many;
    for (int n = 0; n < 40; ++n) {
        many.push_back({L"custom_background_btn_" + std::to_wstring(n), 0, n, L"t", L"s"});
    }
    const CustomImageGroup::Contents contents = CustomImageGroup::Read(Serialise(many));
    EXPECT_EQ(contents.records, Records(many.begin(), many.begin() + 32));
    EXPECT_EQ(contents.rest, Serialise(Records(many.begin() + 32, many.end())));
    EXPECT_EQ(CustomImageGroup::Read(L""), CustomImageGroup::Contents{});
}

}  // namespace
