#include "tests/support/TopLevelWindows.h"

#include <array>

namespace harness {

std::vector<HWND> TopLevelWindows(const wchar_t* className) {
    struct Search {
        const wchar_t* className;
        std::vector<HWND> found;
    } search{className, {}};
    const auto look = [](HWND window, LPARAM parameter) -> BOOL {
        auto& searched = *reinterpret_cast<Search*>(parameter);
        std::array<wchar_t, 256> name{};
        GetClassNameW(window, name.data(), static_cast<int>(name.size()));
        if (lstrcmpiW(name.data(), searched.className) == 0) {
            searched.found.push_back(window);
        }
        return TRUE;
    };
    EnumWindows(look, reinterpret_cast<LPARAM>(&search));
    return search.found;
}

std::vector<HWND> OwnedWindows(const wchar_t* className, HWND owner) {
    std::vector<HWND> windows = TopLevelWindows(className);
    std::erase_if(windows, [owner](HWND window) { return GetWindow(window, GW_OWNER) != owner; });
    return windows;
}

}  // namespace harness
