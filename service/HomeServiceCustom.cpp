// The user's own backgrounds, as far as no picture has to be read or written.
#include <windows.h>

#include <algorithm>

#include "service/CustomImageGroup.h"
#include "service/FeatureTables.h"
#include "service/FileUtil.h"
#include "service/HomeService.h"
#include "service/KindNotifier.h"
#include "service/SettingNames.h"
#include "service/SettingsStore.h"
#include "service/UserIdentity.h"
#include "service/pictures/BackgroundPicture.h"
#include "service/pictures/CustomItemNames.h"
#include "suite/logger/QxLogger.h"

using GlobalUtils::MessageBoxKind;

bool HomeService::IsCustomFull() const {
    return customItems_.size() >= CustomItemNames::kLimit;
}

std::vector<CustomImageRecord>::iterator HomeService::FindCustomItem(const std::wstring& itemName) {
    return std::find_if(customItems_.begin(), customItems_.end(),
                        [&itemName](const CustomImageRecord& record) { return record.name == itemName; });
}

bool HomeService::SelectCustomBackground(const std::wstring& itemName) {
    const auto record = FindCustomItem(itemName);
    if (record == customItems_.end()) {
        return false;
    }
    std::wstring key = itemName;
    if (record->isVideo != 0) {
        if (!FileUtil::GetInstance().FileExists(record->sourcePath)) {
            KindNotifier<MessageBoxKind>::GetInstance().Publish(GlobalUtils::kMessageBoxChannel,
                                                                MessageBoxKind::kBackgroundGone);
            DeleteCustomBackground(itemName);
            return false;
        }
        key += CustomItemNames::kVideoSuffix;
    }
    const auto path = customByName_.find(key);
    if (path == customByName_.end()) {
        return false;
    }
    SettingsStore::Write(SettingNames::kBackgroundReplacement, FeatureTables::kCustomIndex);
    SettingsStore::Write(SettingNames::kBackgroundImagePath, path->second);
    SettingsStore::Write(SettingNames::kSelectedButtonName, itemName);
    return true;
}

bool HomeService::DeleteCustomBackground(std::wstring itemName) {
    const auto record = FindCustomItem(itemName);
    if (record == customItems_.end()) {
        return false;
    }
    std::wstring selected;
    SettingsStore::Read(SettingNames::kSelectedButtonName, selected);
    if (selected == itemName) {
        SettingsStore::Write(SettingNames::kBackgroundReplacement, 0);
    }
    const std::wstring picture = ForgetCustomItem(record);
    // A damaged list may name any file; only a picture of the program's own making is deleted.
    if (CustomItemNames::IsPictureOf(itemName, picture)) {
        BackgroundPicture::Remove(picture);
    }
    SettingsStore::Write(SettingNames::kCustomImageGroup, CustomImageGroup::Serialise(customItems_));
    return true;
}

std::wstring HomeService::ForgetCustomItem(std::vector<CustomImageRecord>::iterator record) {
    const std::wstring itemName = record->name;
    const std::int32_t index = record->index;
    std::wstring picture;
    bool leftTheGallery = false;
    if (const auto entry = customByName_.find(itemName); entry != customByName_.end()) {
        picture = entry->second;
        leftTheGallery = removeCustomItem_.CallOr(false, index, itemName);
        customByName_.erase(entry);
    }
    customItems_.erase(record);
    if (leftTheGallery) {
        // The cells behind it have moved up by one.
        for (CustomImageRecord& later : customItems_) {
            later.index -= later.index > index ? 1 : 0;
        }
    }
    return picture;
}

bool HomeService::CopyFileToDest(const std::wstring& source, const std::wstring& destination) {
    if (!CopyFileW(source.c_str(), destination.c_str(), FALSE)) {
        const DWORD error = GetLastError();
        LogLine(4, L"HomeService::CopyFileToDest", L"Copy File To Resource Fail,ErrorCode:", error);
        return false;
    }
    return true;
}

std::wstring HomeService::GetUserSidString() {
    return InteractiveUserSid();
}
