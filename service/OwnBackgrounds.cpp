#include "service/OwnBackgrounds.h"

#include <windows.h>

#include <array>
#include <chrono>
#include <memory>
#include <utility>
#include <vector>

#include "service/CustomImageGroup.h"
#include "service/FeatureTables.h"
#include "service/FileUtil.h"
#include "service/GlobalUtils.h"
#include "service/KindNotifier.h"
#include "service/OlderLayout.h"
#include "service/OwnFolders.h"
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
constexpr std::chrono::seconds kLookPatience{2};

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

enum class Look { kThere, kGone, kUnknown };

// The file may lie on a share that does not answer.
Look LookAt(const std::wstring& path) {
    const auto look = std::make_shared<Look>(Look::kUnknown);
    const bool answered = pictures::RunWhilePainting(
        [path, look] {
            const FileUtil& files = FileUtil::GetInstance();
            *look = files.FileExists(path) ? Look::kThere : files.IsGone(path) ? Look::kGone : Look::kUnknown;
            return true;
        },
        kLookPatience);
    return answered ? *look : Look::kUnknown;
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

void OwnBackgrounds::Load(const std::wstring& userSid) {
    userSid_ = userSid;
    if (userSid_.empty()) {
        LogLine(LogLevel::kError, L"HomeService::InitCustomImage", L"Get user SID failed");
        return;
    }
    LoadList();
}

bool OwnBackgrounds::LoadList() {
    const OwnFolders folders(userSid_);
    switch (folders.GetState()) {
        case OwnFolders::State::kUsable:
            pictures::BackgroundPicture::RemoveUnfinished(pictures::CustomFolder::OfUser(userSid_));
            for (int attempt = 0; attempt < kMoveAttempts && !MoveOlderLayout(); ++attempt) {
            }
            break;
        case OwnFolders::State::kNoUserFolder:
            break;
        case OwnFolders::State::kNoSharedFolder:
            LogLine(LogLevel::kError, L"HomeService::InitCustomImage", L"Create Res Folder Failed");
            return false;
        case OwnFolders::State::kRefused:
            return false;
    }
    CustomImageGroup::Contents stored = SettingsStore::ReadCustomImages();
    list_.Assign(std::move(stored.records), std::move(stored.rest));
    isLoaded_ = true;
    ShowStoredItems();
    return true;
}

bool OwnBackgrounds::MoveOlderLayout() const {
    return OlderLayout(userSid_).MoveIntoUserFolder();
}

void OwnBackgrounds::ShowStoredItems() {
    std::vector<std::wstring> stale;
    for (const CustomImageRecord& record : list_.Records()) {
        if (const FileUtil& files = FileUtil::GetInstance(); !files.FileExists(record.thumbPath)) {
            if (files.IsGone(record.thumbPath)) {
                stale.push_back(record.name);
            } else {
                LogLine(LogLevel::kInfo, L"HomeService::InitCustomImage", record.name,
                        L" stays without a cell: its picture cannot be looked at");
            }
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
    // A folder that could not be had at the start may be there by now, and the list has to be known before it is
    // written. Nobody has refused a 33rd item of a list that was not known.
    if (userSid_.empty() || (!isLoaded_ && (!LoadList() || list_.IsFull()))) {
        PublishMessage(MessageBoxKind::kBackgroundNotSaved);
        return false;
    }
    const bool isVideo = FileUtil::GetInstance().IsVideoFile(sourcePath);
    const std::wstring listedPath = ListedPath(sourcePath);
    const std::wstring name = pictures::CustomItemNames::NextFree(list_.Taken());
    const std::wstring picture = pictures::CustomFolder::PicturePath(userSid_, name);
    const OwnFolders folders(userSid_);
    // A video is used where it lies, so its path must survive; an image's is a mere note.
    if ((isVideo && listedPath.empty()) || folders.GetState() != OwnFolders::State::kUsable ||
        !SettingsStore::MayWriteCustomImages()) {
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
    SettingsStore::WriteCustomImages(list_.Records(), list_.Rest());
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
        const Look look = LookAt(record->sourcePath);
        if (look != Look::kThere) {
            PublishMessage(look == Look::kGone ? MessageBoxKind::kBackgroundGone : MessageBoxKind::kFileUnreadable);
            if (look == Look::kGone) {
                Delete(itemName);
            }
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
    // Kept: the record in memory goes before the file; the list is written last.
    const std::wstring picture = Forget(itemName);
    std::wstring selected;
    SettingsStore::Read(SettingNames::kSelectedButtonName, selected);
    if (selected == itemName) {
        SettingsStore::Write(SettingNames::kBackgroundReplacement, 0);
    }
    // A damaged list may name any file; only a picture of the program's own making is deleted.
    if (pictures::CustomItemNames::IsPictureOf(itemName, picture) &&
        OwnFolders(userSid_).GetState() != OwnFolders::State::kRefused) {
        // Somebody may be looking at it for a moment.
        pictures::RunWhilePainting([&picture] {
            pictures::BackgroundPicture::Remove(picture);
            return true;
        });
    }
    SettingsStore::WriteCustomImages(list_.Records(), list_.Rest());
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
