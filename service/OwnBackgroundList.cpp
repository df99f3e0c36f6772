#include "service/OwnBackgroundList.h"

#include <algorithm>
#include <utility>

#include "service/pictures/CustomItemNames.h"

namespace service {

bool OwnBackgroundList::IsFull() const {
    return records_.size() >= pictures::CustomItemNames::kLimit;
}

std::size_t OwnBackgroundList::Position(const std::wstring& itemName) const {
    const auto found = std::find_if(records_.begin(), records_.end(),
                                    [&itemName](const CustomImageRecord& record) { return record.name == itemName; });
    return static_cast<std::size_t>(found - records_.begin());
}

const CustomImageRecord* OwnBackgroundList::Find(const std::wstring& itemName) const {
    const std::size_t position = Position(itemName);
    return position < records_.size() ? &records_[position] : nullptr;
}

const std::wstring* OwnBackgroundList::PathOf(const std::wstring& key) const {
    const auto found = paths_.find(key);
    return found == paths_.end() ? nullptr : &found->second;
}

OwnBackgroundList::Paths OwnBackgroundList::Taken() const {
    Paths taken = paths_;
    for (const CustomImageRecord& record : records_) {
        taken.try_emplace(record.name, record.thumbPath);
    }
    return taken;
}

void OwnBackgroundList::Assign(std::vector<CustomImageRecord> records, std::wstring rest) {
    records_ = std::move(records);
    rest_ = std::move(rest);
    paths_.clear();
}

void OwnBackgroundList::Append(const CustomImageRecord& record) {
    records_.push_back(record);
}

void OwnBackgroundList::SetPaths(const std::wstring& itemName, const std::wstring& videoPath) {
    const CustomImageRecord* record = Find(itemName);
    if (!record) {
        return;
    }
    paths_[itemName] = record->thumbPath;
    if (record->isVideo != 0) {
        paths_[itemName + std::wstring(pictures::CustomItemNames::kVideoSuffix)] = videoPath;
    }
}

void OwnBackgroundList::SetIndex(const std::wstring& itemName, std::int32_t index) {
    if (const std::size_t position = Position(itemName); position < records_.size()) {
        records_[position].index = index;
    }
}

void OwnBackgroundList::Remove(const std::wstring& itemName) {
    paths_.erase(itemName);
    if (const std::size_t position = Position(itemName); position < records_.size()) {
        records_.erase(records_.begin() + static_cast<std::ptrdiff_t>(position));
    }
}

void OwnBackgroundList::CloseGap(std::int32_t index) {
    for (CustomImageRecord& record : records_) {
        record.index -= record.index > index ? 1 : 0;
    }
}

}  // namespace service
