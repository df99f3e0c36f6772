#include "preview/CameraAllowList.h"

#include <algorithm>

namespace preview {

namespace {

const std::wstring kAllowList[] = {
    L"VID_05C8", L"VID_3408", L"VID_0408",
    L"VID_3408",  // kept: the same maker twice, as in the list that is shared with the camera service
    L"VID_13D3", L"VID_30C9", L"VID_3277", L"VID_2B7E", L"VID_1BCF", L"VID_3196",
    L"INT3480",  // the one camera that is not on USB
    L"VID_5959", L"VID_5858",
};

wchar_t ToUpperAscii(wchar_t character) {
    return character >= L'a' && character <= L'z' ? static_cast<wchar_t>(character - L'a' + L'A') : character;
}

}  // namespace

std::span<const std::wstring> CameraAllowList() {
    return kAllowList;
}

bool IsAllowedCameraLink(std::wstring symbolicLink) {
    std::transform(symbolicLink.begin(), symbolicLink.end(), symbolicLink.begin(), ToUpperAscii);
    return std::any_of(std::begin(kAllowList), std::end(kAllowList),
                       [&](const std::wstring& entry) { return symbolicLink.find(entry) != std::wstring::npos; });
}

}  // namespace preview
