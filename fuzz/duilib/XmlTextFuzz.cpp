// Damaged XML as it is prepared for the system's reader: always plain, always finished.
#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "fuzz/support/Require.h"
#include "markup/XmlText.h"

namespace {

std::string_view WithoutEnd(std::string_view text) {
    return text.substr(0, text.find_last_not_of(" \t\r\n") + 1);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view input{reinterpret_cast<const char*>(data), size};
    const DuiLib::XmlText text = DuiLib::PrepareXml(input);
    if (!text.hasElement) {
        return 0;  // no reader sees it
    }
    REQUIRE(std::all_of(text.ascii.begin(), text.ascii.end(), [](char c) { return c > 0; }));
    // What it made is finished, and preparing it again changes nothing but blanks behind the root, which say nothing.
    const DuiLib::XmlText again = DuiLib::PrepareXml(text.ascii);
    REQUIRE(again.finished);
    REQUIRE(again.validUtf8);
    REQUIRE(WithoutEnd(again.ascii) == WithoutEnd(text.ascii));
    return 0;
}
