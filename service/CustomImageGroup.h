#pragma once
// The registry string that lists the user's own backgrounds: records to text and back.
//
// Why: the string is shared with the camera service and may be damaged or come from another version; what cannot be
// read costs that record only. A record whose path holds a separator cannot be told from damage, for the format has no
// escape. Threads: pure functions, any thread.
#include <string>
#include <string_view>
#include <vector>

#include "service/CustomImageRecord.h"

namespace CustomImageGroup {

inline constexpr std::wstring_view kItemSeparator = L"[(&;i!-)]";
inline constexpr std::wstring_view kFieldSeparator = L"[(&,f!=)]";

// Name, index, isVideo, thumbPath, sourcePath; every record, the last included, ends with the item separator.
std::wstring Serialise(const std::vector<CustomImageRecord>& records);

// Pieces with fewer than five fields, or with a number that is no decimal 32-bit integer, are dropped; fields after
// the fifth are ignored.
std::vector<CustomImageRecord> Parse(std::wstring_view text);

}  // namespace CustomImageGroup
