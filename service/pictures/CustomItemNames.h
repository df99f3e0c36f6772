#pragma once
// Names of the user's own backgrounds and of their parts in the gallery.
//
// Threads: pure functions, any thread.
#include <cstdint>
#include <map>
#include <string>
#include <string_view>

namespace pictures::CustomItemNames {

inline constexpr std::wstring_view kPrefix = L"custom_background_btn_";
inline constexpr std::wstring_view kVideoSuffix = L"_video";
// Of the other parts of an item in the gallery: the hover-aware container, the picture, the delete button.
inline constexpr wchar_t kItemSuffix[] = L"_item";
inline constexpr wchar_t kPictureSuffix[] = L"_bk";
inline constexpr wchar_t kDeleteSuffix[] = L"_del";
// The largest number of items, and one more than the largest number in a name.
inline constexpr std::int32_t kLimit = 32;

// The first name that is not a key of the map; the last name when all are.
std::wstring NextFree(const std::map<std::wstring, std::wstring>& taken);

// The prefix and a number below the limit, written as NextFree writes it, and nothing else.
bool IsItemName(std::wstring_view name);
// Whether the file is the picture of that item, by its name: in any folder, "custom_background_btn_3.jpg".
bool IsPictureOf(std::wstring_view name, std::wstring_view path);
// Whether a control of that name is the delete button of an item.
bool IsDeleteButton(std::wstring_view partName);

}  // namespace pictures::CustomItemNames

// From the name of any part of an item back to the item: cut before the first "_del", else "_item", else "_bk".
// Empty for a name that belongs to no item. A video badge's name comes back whole; kept, its users count on it.
std::wstring CustomItemName(std::wstring_view partName);
