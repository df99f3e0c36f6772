#pragma once
// The user's own backgrounds in memory: the records in the order of addition, and where the files of each lie.
//
// Why: gallery, folder and registry are kept in step by OwnBackgrounds; this is what it counts with, free of all three.
// An item without a path was never in the gallery.
// Threads: one at a time.
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "service/CustomImageGroup.h"

namespace service {

class OwnBackgroundList {
  public:
    // Item name to its picture, item name + "_video" to its video.
    using Paths = std::map<std::wstring, std::wstring>;

    const std::vector<CustomImageRecord>& Records() const { return records_; }
    const Paths& FilePaths() const { return paths_; }
    bool IsFull() const;
    // What the registry's list holds beside the records, see CustomImageGroup::Contents.
    const std::wstring& Rest() const { return rest_; }
    // The names that a new item cannot have: of items in the gallery, and of those that are only listed.
    Paths Taken() const;
    // Null when there is no such item. Valid until the list changes.
    const CustomImageRecord* Find(const std::wstring& itemName) const;
    // Of an item, or of its video; null when it has none. Valid until the list changes.
    const std::wstring* PathOf(const std::wstring& key) const;

    // Replaces everything; no item has a path then.
    void Assign(std::vector<CustomImageRecord> records, std::wstring rest = {});
    void Append(const CustomImageRecord& record);
    // The item's picture is that of its record; the video counts for videos only.
    void SetPaths(const std::wstring& itemName, const std::wstring& videoPath);
    // Its cell in the gallery.
    void SetIndex(const std::wstring& itemName, std::int32_t index);
    // Takes record and picture away; the path of a video stays.
    void Remove(const std::wstring& itemName);
    // The cells behind that one have moved up by one.
    void CloseGap(std::int32_t index);

  private:
    // In records_; their number when there is no such item.
    std::size_t Position(const std::wstring& itemName) const;

    std::vector<CustomImageRecord> records_;
    std::wstring rest_;
    Paths paths_;
};

}  // namespace service
