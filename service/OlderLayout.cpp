#include "service/OlderLayout.h"

#include <vector>

#include "service/FeatureTables.h"
#include "service/FileLook.h"
#include "service/FileUtil.h"
#include "service/SettingNames.h"
#include "service/SettingsStore.h"
#include "service/pictures/BackgroundPicture.h"
#include "service/pictures/CustomFolder.h"
#include "service/pictures/PaintingWait.h"
#include "suite/common/FolderListing.h"
#include "suite/common/HeldFolder.h"
#include "suite/logger/QxLogger.h"

namespace service {

// Every file that lies in the shared folder itself goes into the user's folder, but for the pictures that were made
// there: those are newer.
bool OlderLayout::CopyPictures(const std::set<std::wstring>& newer, std::set<std::wstring>& copied) const {
    const std::wstring base = pictures::CustomFolder::kBase;
    suite::FolderListing entry(base + L"\\*");
    const bool canBeListed = entry || entry.IsComplete();
    for (; entry; entry.Next()) {
        const std::wstring destination = pictures::CustomFolder::OfUser(userSid_) + L"\\" + entry.Name();
        if (entry.IsFolder() || newer.contains(destination)) {
            continue;
        }
        // What it leads to is not everybody's to read, or not the user's to write.
        if (entry.IsLink() || suite::IsLink(destination)) {
            LogLine(LogLevel::kInfo, L"HomeService::SyncCustomImg", L"a link is not copied: ", entry.Name());
            continue;
        }
        if (FileUtil::GetInstance().CopyFileToDest(base + L"\\" + entry.Name(), destination)) {
            copied.insert(destination);
        } else {
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
    auto [records, rest] = SettingsStore::ReadCustomImages();
    std::set<std::wstring> newer;
    for (const CustomImageRecord& record : records) {
        if (record.thumbPath == pictures::CustomFolder::PicturePath(userSid_, record.name) &&
            FileUtil::GetInstance().FileExists(record.thumbPath)) {
            newer.insert(record.thumbPath);
        }
    }
    std::set<std::wstring> copied;
    if (!pictures::RunWhilePainting([&] { return CopyPictures(newer, copied); })) {
        return false;
    }

    std::wstring selected;
    SettingsStore::Read(SettingNames::kSelectedButtonName, selected);
    int replacement = 0;
    SettingsStore::Read(SettingNames::kBackgroundReplacement, replacement);
    for (CustomImageRecord& record : records) {
        MoveRecord(record, copied.contains(pictures::CustomFolder::PicturePath(userSid_, record.name)));
        if (record.name == selected && replacement == FeatureTables::kCustomIndex) {
            SettingsStore::Write(SettingNames::kBackgroundImagePath,
                                 record.isVideo != 0 ? record.sourcePath : record.thumbPath);
        }
    }
    // Kept: whoever has no backgrounds gets no list.
    if (!records.empty()) {
        SettingsStore::WriteCustomImages(records, rest);
    }
    SettingsStore::Write(SettingNames::kSyncCustom, 1);
    return true;
}

// A picture that could not be brought over stays in use where it lies. The cover of a video is made anew; what stands
// for one that has none is worth less than an older cover.
void OlderLayout::MoveRecord(CustomImageRecord& record, bool pictureIsCopied) const {
    using pictures::BackgroundPicture::Result;
    using pictures::BackgroundPicture::StandIn;
    const std::wstring picture = pictures::CustomFolder::PicturePath(userSid_, record.name);
    if (record.thumbPath == picture) {
        return;
    }
    bool isThere = pictureIsCopied;
    if (record.isVideo != 0) {
        const std::vector<FileLook> looks = LookAtFiles({record.sourcePath, record.thumbPath});
        const StandIn standIn =
            !pictureIsCopied && looks.back() == FileLook::kGone ? StandIn::kWritten : StandIn::kNone;
        isThere |=
            looks.front() == FileLook::kThere && pictures::RunWhilePainting([&] {
                return pictures::BackgroundPicture::Make(record.sourcePath, true, picture, standIn) == Result::kMade;
            });
    }
    if (isThere) {
        record.thumbPath = picture;
    }
}

}  // namespace service
