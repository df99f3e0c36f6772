#include "service/pictures/FileKinds.h"

#include <algorithm>
#include <initializer_list>

namespace pictures::FileKinds {

namespace {

// Only ASCII letters have to be folded: no other letter has one of the extensions' letters as its lower case.
wchar_t Lower(wchar_t unit) {
    return unit >= L'A' && unit <= L'Z' ? static_cast<wchar_t>(unit + (L'a' - L'A')) : unit;
}

bool ExtensionIsOneOf(std::wstring_view path, std::initializer_list<std::wstring_view> extensions) {
    const std::size_t dot = path.rfind(L'.');
    if (dot == std::wstring_view::npos) {
        return false;
    }
    const std::wstring_view extension = path.substr(dot);
    return std::any_of(extensions.begin(), extensions.end(), [extension](std::wstring_view candidate) {
        return std::equal(extension.begin(), extension.end(), candidate.begin(), candidate.end(),
                          [](wchar_t unit, wchar_t lower) { return Lower(unit) == lower; });
    });
}

}  // namespace

bool IsVideo(std::wstring_view path) {
    return ExtensionIsOneOf(path, {L".mp4", L".mov"});
}

bool IsImage(std::wstring_view path) {
    return ExtensionIsOneOf(path, {L".jpg", L".png", L".bmp", L".jpeg"});
}

}  // namespace pictures::FileKinds
