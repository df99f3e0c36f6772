#pragma once
// One background of the user's own, as the gallery and the registry know it. A plain value, any thread.
#include <cstdint>
#include <string>

struct CustomImageRecord {
    std::wstring name;         // item name, "custom_background_btn_" and a number
    std::int32_t isVideo = 0;  // 1 for a video
    std::int32_t index = 0;    // cell in the gallery's group
    std::wstring thumbPath;    // the item's ".jpg" in the user's folder
    std::wstring sourcePath;   // the file that the user chose

    bool operator==(const CustomImageRecord&) const = default;
};
