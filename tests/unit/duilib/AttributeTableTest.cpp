#include "markup/AttributeTable.h"

#include <gtest/gtest.h>

#include <optional>

namespace DuiLib {
namespace {

enum class Result { kOk, kUnknown, kBadValue };

struct Box {
    Result ApplyAttribute(std::wstring_view name, std::wstring_view value);

    int width = -1;
    int height = -1;
};

constexpr AttributeEntry<Box> kTable[] = {
    {L"width",
     [](Box& box, std::wstring_view value) { return ApplyNumber(value, 0, [&](int number) { box.width = number; }); }},
    {L"height",
     [](Box& box, std::wstring_view value) {
         return ApplyParsed(ParseInt(value), [&](int number) { box.height = number; });
     }},
};

Result Box::ApplyAttribute(std::wstring_view name, std::wstring_view value) {
    return ApplyFromTable(kTable, *this, name, value);
}

TEST(AttributeTable, FindsItsNamesAndNoOthers) {
    EXPECT_EQ(FindAttribute(kTable, L"width"), &kTable[0]);
    EXPECT_EQ(FindAttribute(kTable, L"height"), &kTable[1]);
    for (const wchar_t* name : {L"", L"Width", L"widt", L"widths"}) {
        EXPECT_EQ(FindAttribute(kTable, name), nullptr);
    }
}

TEST(AttributeTable, ToldApartAreWhatIsUnknownAndWhatIsBad) {
    Box box;
    EXPECT_EQ(box.ApplyAttribute(L"width", L"7"), Result::kOk);
    EXPECT_EQ(box.ApplyAttribute(L"height", L"-8"), Result::kOk);
    EXPECT_EQ(box.ApplyAttribute(L"depth", L"9"), Result::kUnknown);
    EXPECT_EQ(box.ApplyAttribute(L"width", L"wide"), Result::kBadValue);
    EXPECT_EQ(box.ApplyAttribute(L"height", L""), Result::kBadValue);
    EXPECT_EQ(box.width, 7);
    EXPECT_EQ(box.height, -8);
}

TEST(AttributeTable, ANumberHasASmallestValue) {
    Box box;
    EXPECT_EQ(box.ApplyAttribute(L"width", L"0"), Result::kOk);
    EXPECT_EQ(box.width, 0);
    EXPECT_EQ(box.ApplyAttribute(L"width", L"-1"), Result::kBadValue);
    EXPECT_EQ(box.width, 0);
}

}  // namespace
}  // namespace DuiLib
