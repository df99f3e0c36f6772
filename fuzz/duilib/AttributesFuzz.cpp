// Values of layout attributes: every parser reads every input.
#include <cstddef>
#include <cstdint>
#include <string>

#include "fuzz/support/Require.h"
#include "fuzz/support/WideText.h"
#include "markup/AttributeParser.h"
#include "markup/ImageAttribute.h"

using namespace DuiLib;

namespace {

constexpr int kLargest = 1'000'000;

bool InRange(int number) {
    return number >= -kLargest && number <= kLargest;
}

bool InRange(const Rect& rect) {
    return InRange(rect.left) && InRange(rect.top) && InRange(rect.right) && InRange(rect.bottom);
}

// A list that was understood says the same when it is written out and read again.
void CheckList(const AttributeList& list) {
    std::wstring text;
    for (const auto& [name, value] : list) {
        REQUIRE(!name.empty());
        REQUIRE(name.find_first_of(L" \t\r\n=\"'") == std::wstring::npos);
        const wchar_t quote = value.find(L'"') == std::wstring::npos ? L'"' : L'\'';
        if (value.find(quote) != std::wstring::npos) {
            return;
        }
        text += name + L'=' + quote + value + quote + L' ';
    }
    const std::optional<AttributeList> again = ParseAttributeList(text);
    REQUIRE(again.has_value());
    REQUIRE(*again == list);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::wstring text = WideText({data, size});
    if (const auto number = ParseInt(text)) {
        REQUIRE(InRange(*number));
        REQUIRE(ParseInt(std::to_wstring(*number)) == number);
    }
    ParseBool(text);
    if (const auto rect = ParseRect(text)) {
        REQUIRE(InRange(*rect));
    }
    if (const auto pair = ParseSize(text)) {
        REQUIRE(InRange(pair->cx) && InRange(pair->cy) && pair->cx >= 0 && pair->cy >= 0);
    }
    ParseColor(text);
    if (const auto list = ParseAttributeList(text)) {
        CheckList(*list);
    }
    if (const auto image = ParseImageAttribute(text)) {
        REQUIRE(!image->file.empty());
        REQUIRE(image->fade >= 0 && image->fade <= 255);
        REQUIRE(InRange(image->cornerDip));
        REQUIRE(!image->sourceDip || InRange(*image->sourceDip));
        REQUIRE(!image->destDip || InRange(*image->destDip));
    }
    return 0;
}
