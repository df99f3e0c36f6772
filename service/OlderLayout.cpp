#include "service/OlderLayout.h"

#include <vector>

#include "service/FeatureTables.h"
#include "service/FileUtil.h"
#include "service/SettingNames.h"
#include "service/SettingsStore.h"
#include "service/pictures/BackgroundPicture.h"
#include "service/pictures/CustomFolder.h"
#include "service/pictures/PaintingWait.h"
#include "suite/common/FolderListing.h"
#include "suite/logger/QxLogger.h"

namespace service {

// Every file that lies in the shared folder itself goes into the user's folder, but for the pictures that were made
// there: those are newer.
bool OlderLayout::CopyPictures(const std::set<std::wstring>& newer) const {
    const std::wstring base = pictures::CustomFolder::kBase;
    suite::FolderListing entry(base + L"\\*");
    const bool canBeListed = entry || entry.IsComplete();
    for (; entry; entry.Next()) {
        const std::wstring destination = pictures::CustomFolder::OfUser(userSid_) + L"\\" + entry.Name();
        if (entry.IsFolder() || newer.contains(destination)) {
            continue;
        }
        if (!FileUtil::GetInstance().CopyFileToDest(base + L"\\" + entry.Name(), destination)) {
            LogLine(LogLevel::kError, L"HomeService::SyncCustomImg", L"copyFile error:", entry.Name());
        }
    }
    return canBeListed;
}

bool OlderLayout::MoveIntoUserFolder() const {
    int moved = 0;
    if (!SettingsStore::Read(SettingNames::kSyncCustom, moved)) {
        SettingsStore::Write(SettingNames::kSyncCustom, 0);
    }
    if (moved != 0) {
        return true;
    }
    std::vector<CustomImageRecord> records = SettingsStore::ReadCustomImages();
    std::set<std::wstring> newer;
    for (const CustomImageRecord& record : records) {
        if (record.thumbPath == pictures::CustomFolder::PicturePath(userSid_, record.name) &&
            FileUtil::GetInstance().FileExists(record.thumbPath)) {
            newer.insert(record.thumbPath);
        }
    }
    if (!CopyPictures(newer)) {
        return false;
    }

    std::wstring selected;
    SettingsStore::Read(SettingNames::kSelectedButtonName, selected);
    int replacement = 0;
    SettingsStore::Read(SettingNames::kBackgroundReplacement, replacement);
    for (CustomImageRecord& record : records) {
        MoveRecord(record);
        if (record.name == selected && replacement == FeatureTables::kCustomIndex) {
            SettingsStore::Write(SettingNames::kBackgroundImagePath,
                                 record.isVideo != 0 ? record.sourcePath : record.thumbPath);
        }
    }
    if (!records.empty()) {
        SettingsStore::WriteCustomImages(records);
    }
    SettingsStore::Write(SettingNames::kSyncCustom, 1);
    return true;
}

// A picture that could not be brought over stays in use where it lies.
void OlderLayout::MoveRecord(CustomImageRecord& record) const {
    const std::wstring picture = pictures::CustomFolder::PicturePath(userSid_, record.name);
    if (record.thumbPath == picture) {
        return;
    }
    const FileUtil& files = FileUtil::GetInstance();
    if (record.isVideo != 0 && files.FileExists(record.sourcePath)) {
        pictures::RunWhilePainting([&] {
            return pictures::BackgroundPicture::Make(record.sourcePath, true, picture) ==
                   pictures::BackgroundPicture::Result::kMade;
        });
    }
    if (files.FileExists(picture) || !files.FileExists(record.thumbPath)) {
        record.thumbPath = picture;
    }
}

}  // namespace service
