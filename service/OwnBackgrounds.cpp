#include "service/OwnBackgrounds.h"

#include <windows.h>

#include <array>
#include <set>
#include <utility>
#include <vector>

#include "service/CustomImageGroup.h"
#include "service/FeatureTables.h"
#include "service/FileUtil.h"
#include "service/GlobalUtils.h"
#include "service/KindNotifier.h"
#include "service/OlderLayout.h"
#include "service/SettingNames.h"
#include "service/SettingsStore.h"
#include "service/pictures/BackgroundPicture.h"
#include "service/pictures/CustomFolder.h"
#include "service/pictures/CustomItemNames.h"
#include "service/pictures/PaintingWait.h"
#include "suite/logger/QxLogger.h"

namespace service {

using GlobalUtils::MessageBoxKind;

namespace {

constexpr int kMoveAttempts = 3;
constexpr DWORD kPathSize = 260;

// Records that name no item, or one that another names already, are damage: their cells could not be told apart.
std::vector<CustomImageRecord> WithItemNamesOnce(std::vector<CustomImageRecord> records) {
    std::set<std::wstring> seen;
    std::erase_if(records, [&seen](const CustomImageRecord& record) {
        return !pictures::CustomItemNames::IsItemName(record.name) || !seen.insert(record.name).second;
    });
    return records;
}

bool CanBeListed(const std::wstring& path) {
    return path.find(CustomImageGroup::kItemSeparator) == std::wstring::npos &&
           path.find(CustomImageGroup::kFieldSeparator) == std::wstring::npos;
}

// A path that the registry's list can hold: the list has no escape for its separators. Empty when there is none.
std::wstring ListedPath(const std::wstring& path) {
    if (CanBeListed(path)) {
        return path;
    }
    std::array<wchar_t, kPathSize> shortPath{};
    const DWORD length = GetShortPathNameW(path.c_str(), shortPath.data(), kPathSize);
    const std::wstring result(shortPath.data(), length < kPathSize ? length : 0);
    return CanBeListed(result) ? result : std::wstring();
}

}  // namespace

void OwnBackgrounds::SetAddToGallery(AddToGallery::Function callback) {
    addToGallery_.Set(std::move(callback));
}

void OwnBackgrounds::SetRemoveFromGallery(RemoveFromGallery::Function callback) {
    removeFromGallery_.Set(std::move(callback));
}

void OwnBackgrounds::SetList(OwnBackgroundList list) {
    list_ = std::move(list);
}

bool OwnBackgrounds::MakeUserFolder() const {
    const FileUtil& files = FileUtil::GetInstance();
    return files.CreateResDirectory(pictures::CustomFolder::kBase) &&
           files.CreateResDirectory(pictures::CustomFolder::OfUser(userSid_));
}

void OwnBackgrounds::Load(const std::wstring& userSid) {
    constexpr wchar_t kFunction[] = L"HomeService::InitCustomImage";
    userSid_ = userSid;
    if (userSid_.empty()) {
        LogLine(LogLevel::kError, kFunction, L"Get user SID failed");
        return;
    }
    const FileUtil& files = FileUtil::GetInstance();
    if (!files.CreateResDirectory(pictures::CustomFolder::kBase)) {
        LogLine(LogLevel::kError, kFunction, L"Create Res Folder Failed");
        return;
    }
    const std::wstring userFolder = pictures::CustomFolder::OfUser(userSid_);
    if (files.CreateResDirectory(userFolder)) {
        pictures::BackgroundPicture::RemoveUnfinished(userFolder);
        for (int attempt = 0; attempt < kMoveAttempts && !MoveOlderLayout(); ++attempt) {
        }
    }
    list_.Assign(WithItemNamesOnce(SettingsStore::ReadCustomImages()));
    ShowStoredItems();
}

bool OwnBackgrounds::MoveOlderLayout() const {
    return OlderLayout(userSid_).MoveIntoUserFolder();
}

void OwnBackgrounds::ShowStoredItems() {
    std::vector<std::wstring> stale;
    for (const CustomImageRecord& record : list_.Records()) {
        if (!FileUtil::GetInstance().FileExists(record.thumbPath)) {
            stale.push_back(record.name);
            continue;
        }
        list_.SetPaths(record.name, record.sourcePath);
        list_.SetIndex(record.name,
                       addToGallery_.CallOr(-1, record.name, record.thumbPath.c_str(), record.isVideo != 0));
    }
    for (const std::wstring& name : stale) {
        Delete(name);
    }
}

bool OwnBackgrounds::Add(const std::wstring& sourcePath) {
    const bool isVideo = FileUtil::GetInstance().IsVideoFile(sourcePath);
    const std::wstring listedPath = ListedPath(sourcePath);
    const std::wstring name = pictures::CustomItemNames::NextFree(list_.FilePaths());
    const std::wstring picture = pictures::CustomFolder::PicturePath(userSid_, name);
    // A video is used where it lies, so its path must survive; an image's is a mere note.
    if (picture.empty() || (isVideo && listedPath.empty()) || !MakeUserFolder()) {
        PublishMessage(MessageBoxKind::kBackgroundNotSaved);
        return false;
    }
    auto made = pictures::BackgroundPicture::Result::kNothingToShow;
    pictures::RunWhilePainting([&] {
        made = pictures::BackgroundPicture::Make(sourcePath, isVideo, picture);
        return true;
    });
    if (made != pictures::BackgroundPicture::Result::kMade) {
        PublishMessage(made == pictures::BackgroundPicture::Result::kNotWritten ? MessageBoxKind::kBackgroundNotSaved
                                                                                : MessageBoxKind::kFileUnreadable);
        return false;
    }

    // All names are taken: the last one's item makes room. The gallery refuses beforehand.
    if (list_.Find(name)) {
        Forget(name);
    }
    const std::int32_t index = addToGallery_.CallOr(-1, name, picture.c_str(), isVideo);
    list_.Append({name, isVideo ? 1 : 0, index, picture, listedPath});
    list_.SetPaths(name, sourcePath);
    SettingsStore::Write(SettingNames::kBackgroundImagePath, isVideo ? sourcePath : picture);
    SettingsStore::WriteCustomImages(list_.Records());
    SettingsStore::Write(SettingNames::kBackgroundReplacement, FeatureTables::kCustomIndex);
    SettingsStore::Write(SettingNames::kSelectedButtonName, name);
    return true;
}

bool OwnBackgrounds::Select(const std::wstring& itemName) {
    const CustomImageRecord* record = list_.Find(itemName);
    if (!record) {
        return false;
    }
    std::wstring key = itemName;
    if (record->isVideo != 0) {
        if (!FileUtil::GetInstance().FileExists(record->sourcePath)) {
            PublishMessage(MessageBoxKind::kBackgroundGone);
            Delete(itemName);
            return false;
        }
        key += pictures::CustomItemNames::kVideoSuffix;
    }
    const std::wstring* path = list_.PathOf(key);
    if (!path) {
        return false;
    }
    SettingsStore::Write(SettingNames::kBackgroundReplacement, FeatureTables::kCustomIndex);
    SettingsStore::Write(SettingNames::kBackgroundImagePath, *path);
    SettingsStore::Write(SettingNames::kSelectedButtonName, itemName);
    return true;
}

bool OwnBackgrounds::Delete(std::wstring itemName) {
    if (!list_.Find(itemName)) {
        return false;
    }
    std::wstring selected;
    SettingsStore::Read(SettingNames::kSelectedButtonName, selected);
    if (selected == itemName) {
        SettingsStore::Write(SettingNames::kBackgroundReplacement, 0);
    }
    const std::wstring picture = Forget(itemName);
    // A damaged list may name any file; only a picture of the program's own making is deleted.
    if (pictures::CustomItemNames::IsPictureOf(itemName, picture)) {
        pictures::BackgroundPicture::Remove(picture);
    }
    SettingsStore::WriteCustomImages(list_.Records());
    return true;
}

std::wstring OwnBackgrounds::Forget(const std::wstring& itemName) {
    const std::int32_t index = list_.Find(itemName)->index;
    std::wstring picture;
    bool leftTheGallery = false;
    if (const std::wstring* path = list_.PathOf(itemName)) {
        picture = *path;
        leftTheGallery = removeFromGallery_.CallOr(false, index, itemName);
    }
    list_.Remove(itemName);
    if (leftTheGallery) {
        list_.CloseGap(index);
    }
    return picture;
}

}  // namespace service
