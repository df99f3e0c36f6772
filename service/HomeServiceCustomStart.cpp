// The user's own backgrounds: what is loaded when the program starts, and the move out of an older layout.
#include <set>

#include "service/CustomImageGroup.h"
#include "service/FeatureTables.h"
#include "service/FileUtil.h"
#include "service/HomeService.h"
#include "service/SettingNames.h"
#include "service/SettingsStore.h"
#include "service/pictures/BackgroundPicture.h"
#include "service/pictures/CustomFolder.h"
#include "service/pictures/CustomItemNames.h"
#include "service/pictures/PaintingWait.h"
#include "suite/logger/QxLogger.h"

namespace {

constexpr int kSyncAttempts = 3;

std::vector<CustomImageRecord> StoredRecords() {
    std::wstring group;
    SettingsStore::Read(SettingNames::kCustomImageGroup, group);
    return CustomImageGroup::Parse(group);
}

// Records that name no item, or one that another names already, are damage: their cells could not be told apart.
std::vector<CustomImageRecord> WithItemNamesOnce(std::vector<CustomImageRecord> records) {
    std::set<std::wstring> seen;
    std::erase_if(records, [&seen](const CustomImageRecord& record) {
        return !CustomItemNames::IsItemName(record.name) || !seen.insert(record.name).second;
    });
    return records;
}

// Every file that lies in the shared folder itself goes into the user's folder, but for the pictures that were made
// there: those are newer. False when the shared folder cannot be looked at.
bool CopyOlderLayout(const std::wstring& userFolder, const std::set<std::wstring>& newer) {
    WIN32_FIND_DATAW found = {};
    const HANDLE search = FindFirstFileW((std::wstring(CustomFolder::kBase) + L"\\*").c_str(), &found);
    if (search == INVALID_HANDLE_VALUE) {
        return false;
    }
    do {
        const std::wstring destination = userFolder + L"\\" + found.cFileName;
        if ((found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0 || newer.contains(destination)) {
            continue;
        }
        if (!HomeService::CopyFileToDest(std::wstring(CustomFolder::kBase) + L"\\" + found.cFileName, destination)) {
            LogLine(4, L"HomeService::SyncCustomImg", L"copyFile error:", found.cFileName);
        }
    } while (FindNextFileW(search, &found));
    FindClose(search);
    return true;
}

}  // namespace

std::wstring HomeService::PicturePath(const std::wstring& itemName) const {
    return userSid_.empty() ? std::wstring() : CustomFolder::PicturePath(userSid_, itemName);
}

bool HomeService::MakeUserFolder() const {
    const FileUtil& files = FileUtil::GetInstance();
    return files.CreateResDirectory(CustomFolder::kBase) && files.CreateResDirectory(CustomFolder::OfUser(userSid_));
}

void HomeService::InitCustomImage() {
    LoadCustomImages(GetUserSidString());
}

void HomeService::LoadCustomImages(const std::wstring& userSid) {
    constexpr wchar_t kFunction[] = L"HomeService::InitCustomImage";
    userSid_ = userSid;
    if (userSid_.empty()) {
        LogLine(4, kFunction, L"Get user SID failed");
        return;
    }
    const FileUtil& files = FileUtil::GetInstance();
    if (!files.CreateResDirectory(CustomFolder::kBase)) {
        LogLine(4, kFunction, L"Create Res Folder Failed");
        return;
    }
    const std::wstring userFolder = CustomFolder::OfUser(userSid_);
    if (files.CreateResDirectory(userFolder)) {
        BackgroundPicture::RemoveUnfinished(userFolder);
        for (int attempt = 0; attempt < kSyncAttempts && !SyncCustomImg(); ++attempt) {
        }
    }
    customItems_ = WithItemNamesOnce(StoredRecords());
    customByName_.clear();
    ShowStoredItems();
}

void HomeService::ShowStoredItems() {
    std::vector<std::wstring> stale;
    for (CustomImageRecord& record : customItems_) {
        if (!FileUtil::GetInstance().FileExists(record.thumbPath)) {
            stale.push_back(record.name);
            continue;
        }
        customByName_[record.name] = record.thumbPath;
        if (record.isVideo != 0) {
            customByName_[record.name + std::wstring(CustomItemNames::kVideoSuffix)] = record.sourcePath;
        }
        record.index = addCustomItem_.CallOr(-1, record.name, record.thumbPath.c_str(), record.isVideo != 0);
    }
    for (const std::wstring& name : stale) {
        DeleteCustomBackground(name);
    }
}

bool HomeService::SyncCustomImg() {
    int synced = 0;
    if (!SettingsStore::Read(SettingNames::kSyncCustom, synced)) {
        SettingsStore::Write(SettingNames::kSyncCustom, 0);
    }
    if (synced != 0) {
        return true;
    }
    std::vector<CustomImageRecord> records = StoredRecords();
    std::set<std::wstring> newer;
    for (const CustomImageRecord& record : records) {
        if (record.thumbPath == PicturePath(record.name) && FileUtil::GetInstance().FileExists(record.thumbPath)) {
            newer.insert(record.thumbPath);
        }
    }
    if (!CopyOlderLayout(CustomFolder::OfUser(userSid_), newer)) {
        return false;
    }

    std::wstring selected;
    SettingsStore::Read(SettingNames::kSelectedButtonName, selected);
    int replacement = 0;
    SettingsStore::Read(SettingNames::kBackgroundReplacement, replacement);
    for (CustomImageRecord& record : records) {
        MoveRecordToUserFolder(record);
        if (record.name == selected && replacement == FeatureTables::kCustomIndex) {
            SettingsStore::Write(SettingNames::kBackgroundImagePath,
                                 record.isVideo != 0 ? record.sourcePath : record.thumbPath);
        }
    }
    if (!records.empty()) {
        SettingsStore::Write(SettingNames::kCustomImageGroup, CustomImageGroup::Serialise(records));
    }
    SettingsStore::Write(SettingNames::kSyncCustom, 1);
    return true;
}

// A picture that could not be brought over stays in use where it lies.
void HomeService::MoveRecordToUserFolder(CustomImageRecord& record) const {
    const std::wstring picture = PicturePath(record.name);
    if (record.thumbPath == picture) {
        return;
    }
    const FileUtil& files = FileUtil::GetInstance();
    if (record.isVideo != 0 && files.FileExists(record.sourcePath)) {
        RunWhilePainting([&] {
            return BackgroundPicture::Make(record.sourcePath, true, picture) == BackgroundPicture::Result::kMade;
        });
    }
    if (files.FileExists(picture) || !files.FileExists(record.thumbPath)) {
        record.thumbPath = picture;
    }
}
