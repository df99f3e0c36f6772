#include "service/OwnBackgrounds.h"

#include <atomic>
#include <memory>
#include <utility>
#include <vector>

#include "service/CustomImageGroup.h"
#include "service/FeatureTables.h"
#include "service/FileLook.h"
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
namespace BackgroundPicture = pictures::BackgroundPicture;

namespace {

constexpr int kMoveAttempts = 3;

FileLook LookAt(const std::wstring& path) {
    return LookAtFiles({path}).front();
}

// Works that were left to themselves and have not ended.
std::atomic<int> leftWorks = 0;

// The picture of that source in its place. The source may lie on a share that is gone, or its decoder hang.
BackgroundPicture::Result MakePicture(const std::wstring& source, bool isVideo, const std::wstring& target) {
    using BackgroundPicture::Result;
    struct Work {
        std::wstring source, unfinished;
        Result result = Result::kNothingToShow;  // the thread's until it has ended
        std::atomic<bool> isOver = false;        // of work and wait, the second to end tidies up

        void End() {
            if (isOver.exchange(true)) {
                BackgroundPicture::Discard(unfinished);
                --leftWorks;
            }
        }
    };
    // Each that was left may still be writing under its name.
    static int number = 0;
    number = leftWorks == 0 ? 0 : number + 1;
    const auto work = std::make_shared<Work>();
    work->source = source;
    work->unfinished = BackgroundPicture::UnfinishedName(target, number);
    const bool ended = pictures::RunWhilePainting(
        [work, isVideo] {
            work->result = BackgroundPicture::Prepare(work->source, isVideo, work->unfinished);
            work->End();
            return true;
        },
        BackgroundPicture::kPatience);
    if (!ended) {
        ++leftWorks;
        work->End();
        return Result::kNothingToShow;
    }
    Result result = work->result;
    if (result == Result::kMade) {
        // Somebody may have the older one open for a moment.
        pictures::RunWhilePainting([&] {
            result = BackgroundPicture::Finish(work->unfinished, target);
            return true;
        });
    }
    return result;
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
            BackgroundPicture::RemoveUnfinished(pictures::CustomFolder::OfUser(userSid_));
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
    // An older version's list may name pictures anywhere.
    const std::wstring own = pictures::CustomFolder::OfUser(userSid_) + L"\\";
    std::vector<std::wstring> elsewhere;
    for (const CustomImageRecord& record : list_.Records()) {
        if (!record.thumbPath.starts_with(own)) {
            elsewhere.push_back(record.thumbPath);
        }
    }
    std::vector<FileLook> looks;
    if (!elsewhere.empty()) {
        looks = LookAtFiles(std::move(elsewhere));
    }
    std::vector<std::wstring> stale;
    auto next = looks.begin();
    for (const CustomImageRecord& record : list_.Records()) {
        const FileLook look = record.thumbPath.starts_with(own) ? LookAtOwnFile(record.thumbPath) : *next++;
        if (look == FileLook::kGone) {
            stale.push_back(record.name);
            continue;
        }
        if (look == FileLook::kUnknown) {
            LogLine(LogLevel::kInfo, L"HomeService::InitCustomImage", record.name,
                    L" stays without a cell: its picture cannot be looked at");
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
    const auto made = MakePicture(sourcePath, isVideo, picture);
    if (made != BackgroundPicture::Result::kMade) {
        PublishMessage(made == BackgroundPicture::Result::kNotWritten ? MessageBoxKind::kBackgroundNotSaved
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
        const FileLook look = LookAt(record->sourcePath);
        if (look != FileLook::kThere) {
            PublishMessage(look == FileLook::kGone ? MessageBoxKind::kBackgroundGone : MessageBoxKind::kFileUnreadable);
            if (look == FileLook::kGone) {
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
    // The list is written last: a program that is ended in between leaves a record without a picture, which the next
    // start takes away, and no picture that nobody knows of.
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
            BackgroundPicture::Remove(picture);
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
