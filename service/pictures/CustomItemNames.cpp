#include "service/pictures/CustomItemNames.h"

namespace pictures::CustomItemNames {

std::wstring NextFree(const std::map<std::wstring, std::wstring>& taken) {
    std::wstring name;
    for (std::int32_t n = 0; n < kLimit; ++n) {
        name = std::wstring(kPrefix) + std::to_wstring(n);
        if (!taken.contains(name)) {
            break;
        }
    }
    return name;
}

bool IsItemName(std::wstring_view name) {
    if (!name.starts_with(kPrefix)) {
        return false;
    }
    const std::wstring_view number = name.substr(kPrefix.size());
    for (std::int32_t n = 0; n < kLimit; ++n) {
        if (number == std::to_wstring(n)) {
            return true;
        }
    }
    return false;
}

bool IsPictureOf(std::wstring_view name, std::wstring_view path) {
    const std::size_t slash = path.find_last_of(L"\\/");
    const std::wstring_view file = slash == std::wstring_view::npos ? path : path.substr(slash + 1);
    return file == std::wstring(name) + L".jpg";
}

bool IsDeleteButton(std::wstring_view partName) {
    return partName.find(kPrefix) != std::wstring_view::npos && partName.find(kDeleteSuffix) != std::wstring_view::npos;
}

}  // namespace pictures::CustomItemNames

std::wstring CustomItemName(std::wstring_view partName) {
    if (partName.find(pictures::CustomItemNames::kPrefix) == std::wstring_view::npos) {
        return {};
    }
    for (const std::wstring_view suffix : {std::wstring_view(pictures::CustomItemNames::kDeleteSuffix),
                                           std::wstring_view(pictures::CustomItemNames::kItemSuffix),
                                           std::wstring_view(pictures::CustomItemNames::kPictureSuffix)}) {
        const std::size_t cut = partName.find(suffix);
        if (cut != std::wstring_view::npos) {
            return std::wstring(partName.substr(0, cut));
        }
    }
    return std::wstring(partName);
}
