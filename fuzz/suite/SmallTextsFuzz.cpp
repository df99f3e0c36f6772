// Small texts from outside: registry bytes, web addresses, the firmware's product name, language tags.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "LanguageFallback.h"
#include "fuzz/support/Input.h"
#include "fuzz/support/Require.h"
#include "fuzz/support/WideText.h"
#include "suite/product/ProductName.h"
#include "suite/registry/RegistryText.h"
#include "suite/url/WebAddress.h"

namespace {

void CheckRegistryText(std::span<const std::uint8_t> bytes) {
    const auto text = DE::DecodeRegistryText(bytes.data(), bytes.size());
    REQUIRE(text.has_value() == (bytes.size() % 2 == 0));
    if (!text) {
        return;
    }
    REQUIRE(text->size() <= bytes.size() / 2);
    REQUIRE(text->find(L'\0') == text->npos);
    for (std::size_t i = 0; i < text->size(); ++i) {
        REQUIRE((*text)[i] == static_cast<wchar_t>(bytes[2 * i] | bytes[2 * i + 1] << 8));
    }
    REQUIRE(text->size() == bytes.size() / 2 || (bytes[2 * text->size()] | bytes[2 * text->size() + 1]) == 0);
    const std::wstring path = DE::SystemKeyPath(*text);
    REQUIRE(text->ends_with(path) && !path.starts_with(L'\\'));
    REQUIRE(text->find_first_not_of(L'\\') == text->npos ||
            text->size() - path.size() == text->find_first_not_of(L'\\'));
}

// What passes can neither leave the quotes of a command line nor name a program.
void CheckWebAddress(const std::wstring& text) {
    if (!suite::IsWebAddress(text)) {
        return;
    }
    REQUIRE(text.size() <= suite::kLongestWebAddress);
    REQUIRE(text.find_first_of(L" \"'<>\\`\t\r\n") == text.npos);
    const std::size_t host = text.find(L"://") + 3;
    REQUIRE(host == 7 || host == 8);
    REQUIRE(text.size() > host && text.find_first_of(L"/?#:@", host) != host);
    REQUIRE(text[0] == L'h' || text[0] == L'H');
}

void CheckProductName(std::string_view text) {
    const std::string name = suite::ElementNameOf(text);
    REQUIRE(suite::ElementNameOf(name) == name);
    REQUIRE(name.size() <= text.size() + 1);
    REQUIRE(name.find_first_of(" <>&\"'/=:") == name.npos);
    REQUIRE(name.empty() || name[0] == '_' || std::isalpha(static_cast<unsigned char>(name[0])) != 0);
}

void CheckLanguage(const std::wstring& text) {
    // The first line is what is wanted, the others are what there is.
    std::vector<std::wstring> lines(1);
    for (const wchar_t c : text) {
        if (c == L'\n') {
            lines.emplace_back();
        } else {
            lines.back() += c;
        }
    }
    const std::wstring wanted = lines.front();
    lines.erase(lines.begin());
    const std::wstring chosen = DuiLib::ChooseLanguage(wanted, lines);
    REQUIRE(chosen.empty() || std::find(lines.begin(), lines.end(), chosen) != lines.end());
    if (std::find(lines.begin(), lines.end(), DuiLib::kFallbackLanguage) != lines.end()) {
        REQUIRE(!chosen.empty());
    }
    std::reverse(lines.begin(), lines.end());
    const std::wstring reversed = DuiLib::ChooseLanguage(wanted, lines);
    REQUIRE(chosen == reversed);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input in(data, size);
    const auto kind = in.Any<std::uint8_t>();
    const std::string_view bytes(reinterpret_cast<const char*>(in.Rest().data()), in.Rest().size());
    switch (kind % 4) {
        case 0:
            CheckRegistryText(in.Rest());
            break;
        case 1:
            CheckWebAddress(WideText(in.Rest()));
            break;
        case 2:
            CheckProductName(bytes);
            break;
        default:
            CheckLanguage(WideText(in.Rest()));
    }
    return 0;
}
