#include "service/CustomItemNames.h"

namespace CustomItemNames {

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

}  // namespace CustomItemNames

std::wstring CustomItemName(std::wstring_view partName) {
    if (partName.find(CustomItemNames::kPrefix) == std::wstring_view::npos) {
        return {};
    }
    for (const std::wstring_view suffix : {L"_del", L"_item", L"_bk"}) {
        const std::size_t cut = partName.find(suffix);
        if (cut != std::wstring_view::npos) {
            return std::wstring(partName.substr(0, cut));
        }
    }
    return std::wstring(partName);
}
