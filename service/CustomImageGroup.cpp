#include "service/CustomImageGroup.h"

#include <array>
#include <cstddef>
#include <limits>
#include <optional>
#include <set>

#include "service/pictures/CustomItemNames.h"

namespace CustomImageGroup {

namespace {

// The text before the next separator; `rest` moves behind it, or becomes empty.
std::wstring_view TakePiece(std::wstring_view& rest, std::wstring_view separator) {
    const std::size_t end = rest.find(separator);
    const std::wstring_view piece = rest.substr(0, end);
    rest = end == std::wstring_view::npos ? std::wstring_view{} : rest.substr(end + separator.size());
    return piece;
}

std::optional<std::int32_t> ToInt(std::wstring_view text) {
    const bool negative = text.starts_with(L'-');
    if (negative) {
        text.remove_prefix(1);
    }
    if (text.empty()) {
        return std::nullopt;
    }
    const std::int64_t limit = std::int64_t{std::numeric_limits<std::int32_t>::max()} + (negative ? 1 : 0);
    std::int64_t value = 0;
    for (const wchar_t digit : text) {
        if (digit < L'0' || digit > L'9') {
            return std::nullopt;
        }
        value = value * 10 + (digit - L'0');
        if (value > limit) {
            return std::nullopt;
        }
    }
    return static_cast<std::int32_t>(negative ? -value : value);
}

std::optional<CustomImageRecord> ParseRecord(std::wstring_view piece) {
    constexpr std::size_t kFieldCount = 5;
    std::array<std::wstring_view, kFieldCount> fields;
    for (std::size_t i = 0; i < kFieldCount; ++i) {
        if (i + 1 < kFieldCount && piece.find(kFieldSeparator) == std::wstring_view::npos) {
            return std::nullopt;
        }
        fields[i] = TakePiece(piece, kFieldSeparator);
    }
    const std::optional<std::int32_t> index = ToInt(fields[1]);
    const std::optional<std::int32_t> isVideo = ToInt(fields[2]);
    if (!index || !isVideo) {
        return std::nullopt;
    }
    return CustomImageRecord{std::wstring(fields[0]), *isVideo, *index, std::wstring(fields[3]),
                             std::wstring(fields[4])};
}

// Kept stricter than "fewer than five fields": a number that cannot be read is damage too, and costs nothing, since the
// piece stays in the string.
bool CouldBeOurs(const CustomImageRecord& record) {
    return pictures::CustomItemNames::IsItemName(record.name) && (record.isVideo == 0 || record.isVideo == 1);
}

}  // namespace

std::wstring Serialise(const std::vector<CustomImageRecord>& records) {
    std::wstring text;
    for (const CustomImageRecord& record : records) {
        text.append(record.name).append(kFieldSeparator);
        text.append(std::to_wstring(record.index)).append(kFieldSeparator);
        text.append(std::to_wstring(record.isVideo)).append(kFieldSeparator);
        text.append(record.thumbPath).append(kFieldSeparator);
        text.append(record.sourcePath).append(kItemSeparator);
    }
    return text;
}

Contents Read(std::wstring_view text) {
    Contents contents;
    std::set<std::wstring> names;
    while (!text.empty()) {
        const std::wstring_view piece = TakePiece(text, kItemSeparator);
        std::optional<CustomImageRecord> record = ParseRecord(piece);
        if (record && CouldBeOurs(*record) && names.insert(record->name).second) {
            contents.records.push_back(*std::move(record));
        } else if (!piece.empty()) {
            contents.rest.append(piece).append(kItemSeparator);
        }
    }
    return contents;
}

std::vector<CustomImageRecord> Parse(std::wstring_view text) {
    std::vector<CustomImageRecord> records;
    while (!text.empty()) {
        if (std::optional<CustomImageRecord> record = ParseRecord(TakePiece(text, kItemSeparator))) {
            records.push_back(*std::move(record));
        }
    }
    return records;
}

}  // namespace CustomImageGroup
