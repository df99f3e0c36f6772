#include "suite/registry/RegistryText.h"

#include <algorithm>

namespace DE {

std::optional<std::wstring> DecodeRegistryText(const unsigned char* bytes, std::size_t byteCount) {
    if (byteCount % 2 != 0) {
        return std::nullopt;
    }
    std::wstring text;
    text.reserve(byteCount / 2);
    for (std::size_t i = 0; i < byteCount; i += 2) {
        const auto unit = static_cast<wchar_t>(bytes[i] | (bytes[i + 1] << 8));
        if (unit == L'\0') {
            break;
        }
        text += unit;
    }
    return text;
}

std::wstring SystemKeyPath(const std::wstring& keyPath) {
    return keyPath.substr(std::min(keyPath.find_first_not_of(L'\\'), keyPath.size()));
}

}  // namespace DE
