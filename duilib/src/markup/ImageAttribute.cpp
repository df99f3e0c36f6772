#include "markup/ImageAttribute.h"

#include "markup/AttributeParser.h"

namespace DuiLib {
namespace {

std::wstring_view Trim(std::wstring_view text) {
    const size_t begin = text.find_first_not_of(L" \t\r\n");
    if (begin == std::wstring_view::npos) {
        return {};
    }
    return text.substr(begin, text.find_last_not_of(L" \t\r\n") - begin + 1);
}

// A plain path has neither of these.
bool IsAttributeList(std::wstring_view text) {
    return text.find(L"='") != std::wstring_view::npos || text.find(L"=\"") != std::wstring_view::npos;
}

bool SetRect(std::optional<Rect>& target, std::wstring_view value) {
    target = ParseRect(value);
    return target.has_value();
}

bool IsMargin(const Rect& r) {
    return r.left >= 0 && r.top >= 0 && r.right >= 0 && r.bottom >= 0;
}

bool SetPart(ImageAttribute& image, std::wstring_view name, std::wstring_view value) {
    if (name == L"file") {
        image.file = Trim(value);
        return !image.file.empty();
    }
    if (name == L"source") {
        return SetRect(image.sourceDip, value) && IsMargin(*image.sourceDip) && !image.sourceDip->IsEmpty();
    }
    if (name == L"dest") {
        return SetRect(image.destDip, value);
    }
    if (name == L"corner") {
        const auto corner = ParseRect(value);
        image.cornerDip = corner.value_or(Rect{});
        return corner && IsMargin(*corner);
    }
    if (name == L"fade") {
        const auto fade = ParseInt(value);
        image.fade = fade.value_or(255);
        return fade && *fade >= 0 && *fade <= 255;
    }
    if (name == L"reverse") {
        const auto reverse = ParseBool(value);
        image.reverse = reverse.value_or(false);
        return reverse.has_value();
    }
    return false;
}

}  // namespace

std::optional<ImageAttribute> ParseImageAttribute(std::wstring_view text) {
    ImageAttribute image;
    if (!IsAttributeList(text)) {
        image.file = Trim(text);
        return image.file.empty() ? std::nullopt : std::optional(image);
    }
    const auto parts = ParseAttributeList(text);
    if (!parts) {
        return std::nullopt;
    }
    for (const auto& [name, value] : *parts) {
        if (!SetPart(image, name, value)) {
            return std::nullopt;
        }
    }
    return image.file.empty() ? std::nullopt : std::optional(image);
}

}  // namespace DuiLib
