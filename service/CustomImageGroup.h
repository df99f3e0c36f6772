#pragma once
// The user's own backgrounds as records, and the registry string that lists them: records to text and back.
//
// Why: the string is shared with the camera service and may be damaged or come from another version; what cannot be
// read costs that record only, and stays in the string. A record whose path holds a separator cannot be told from
// damage, for the format has no escape. Threads: pure functions, any thread.
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

// One background of the user's own, as the gallery and the registry know it.
struct CustomImageRecord {
    std::wstring name;         // item name, "custom_background_btn_" and a number
    std::int32_t isVideo = 0;  // 1 for a video
    std::int32_t index = 0;    // cell in the gallery's group
    std::wstring thumbPath;    // the item's ".jpg" in the user's folder
    std::wstring sourcePath;   // the file that the user chose

    bool operator==(const CustomImageRecord&) const = default;
};

namespace CustomImageGroup {

inline constexpr std::wstring_view kItemSeparator = L"[(&;i!-)]";
inline constexpr std::wstring_view kFieldSeparator = L"[(&,f!=)]";

// Name, index, isVideo, thumbPath, sourcePath; every record, the last included, ends with the item separator.
std::wstring Serialise(const std::vector<CustomImageRecord>& records);

// The string as the program uses it.
struct Contents {
    // What the program itself could have written: each item name once, 32 at most, since there are no more names.
    std::vector<CustomImageRecord> records;
    // All other pieces as they were, each with its separator: damaged ones, and those of another version.
    std::wstring rest;

    bool operator==(const Contents&) const = default;
};
Contents Read(std::wstring_view text);

// Pieces with fewer than five fields, or with a number that is no decimal 32-bit integer, are dropped; fields after
// the fifth are ignored.
std::vector<CustomImageRecord> Parse(std::wstring_view text);

}  // namespace CustomImageGroup
