// The user's own backgrounds: choosing a file, checking it, adding it.
#include <windows.h>

#include <cderr.h>
#include <commdlg.h>

#include <array>
#include <memory>

#include "preview/ImageReader.h"
#include "preview/VideoReader.h"
#include "service/CustomImageGroup.h"
#include "service/FeatureTables.h"
#include "service/FileUtil.h"
#include "service/HomeService.h"
#include "service/KindNotifier.h"
#include "service/SettingNames.h"
#include "service/SettingsStore.h"
#include "service/UsageEvents.h"
#include "service/pictures/BackgroundPicture.h"
#include "service/pictures/CustomFolder.h"
#include "service/pictures/CustomItemNames.h"
#include "service/pictures/PaintingWait.h"
#include "service/pictures/VideoCover.h"
#include "suite/logger/QxLogger.h"

using GlobalUtils::MessageBoxKind;

namespace {

constexpr DWORD kPathSize = 260;
constexpr wchar_t kFilter[] = L"Image File\0*.jpg;*.jpeg;*.bmp;*.png;*.mp4;*.mov\0";
constexpr UINT kMaxImageWidth = 4096;
constexpr UINT kMaxImageHeight = 4096;
constexpr UINT kMaxVideoWidth = 1920;
constexpr UINT kMaxVideoHeight = 1200;

void Publish(MessageBoxKind kind) {
    KindNotifier<MessageBoxKind>::GetInstance().Publish(GlobalUtils::kMessageBoxChannel, kind);
}

// False when the dialog was cancelled.
bool AskForFile(HWND owner, std::wstring& path) {
    std::array<wchar_t, kPathSize> buffer{};
    OPENFILENAMEW dialog = {};
    dialog.lStructSize = sizeof(dialog);
    dialog.hwndOwner = owner;
    dialog.lpstrFilter = kFilter;
    dialog.nFilterIndex = 1;
    dialog.lpstrFile = buffer.data();
    dialog.nMaxFile = kPathSize;
    // The last two: nothing is written to the file, and the process stays in its folder, lest it hold the user's.
    dialog.Flags = OFN_PATHMUSTEXIST | OFN_FILEMUSTEXIST | OFN_HIDEREADONLY | OFN_NOCHANGEDIR;
    if (!GetOpenFileNameW(&dialog)) {
        const DWORD error = CommDlgExtendedError();
        if (error != 0) {
            LogLine(4, L"HomeService::ChooseCustomFile", L"The file dialog failed: ", error);
            if (error == FNERR_BUFFERTOOSMALL) {
                Publish(MessageBoxKind::kFileUnreadable);  // a path of more characters than the system's tools take
            }
        }
        return false;
    }
    path = buffer.data();
    return true;
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

bool HomeService::ChooseCustomFile(HWND owner, std::wstring& path) {
    std::wstring chosen;
    if (!AskForFile(owner, chosen)) {
        return false;
    }
    bool accepted = true;
    if (FileUtil::GetInstance().IsImageFile(chosen)) {
        accepted = CheckImageFile(chosen);
    } else if (FileUtil::GetInstance().IsVideoFile(chosen)) {
        accepted = CheckVideoFile(chosen);
    }
    if (!accepted) {
        return false;
    }
    path = chosen;
    ReportUsage(UsageEvents::kBackground, "Background replacement:" + std::to_string(FeatureTables::kCustomIndex));
    SendSignal();
    return true;
}

bool HomeService::CheckImageFile(const std::wstring& path) {
    ImageReader reader;
    UINT width = 0;
    UINT height = 0;
    if (!reader.Open(path) || !reader.GetSize(&width, &height)) {
        Publish(MessageBoxKind::kFileUnreadable);
        return false;
    }
    if (width > kMaxImageWidth || height > kMaxImageHeight) {
        Publish(MessageBoxKind::kImageTooLarge);
        return false;
    }
    return true;
}

bool HomeService::CheckVideoFile(const std::wstring& path) {
    struct Size {
        UINT width = 0;
        UINT height = 0;
    };
    const auto size = std::make_shared<Size>();
    const bool opened = RunWhilePainting(
        [path, size] {
            VideoReader reader;
            return reader.Open(path) && reader.GetFrameSize(&size->width, &size->height);
        },
        kVideoPatience);
    if (!opened) {
        Publish(MessageBoxKind::kFileUnreadable);
        return false;
    }
    if (size->width > kMaxVideoWidth || size->height > kMaxVideoHeight) {
        Publish(MessageBoxKind::kVideoTooLarge);
        return false;
    }
    return true;
}

bool HomeService::AddCustomBackground(const std::wstring& sourcePath) {
    const bool isVideo = FileUtil::GetInstance().IsVideoFile(sourcePath);
    const std::wstring listedPath = ListedPath(sourcePath);
    const std::wstring name = CustomItemNames::NextFree(customByName_);
    const std::wstring picture = PicturePath(name);
    // A video is used where it lies, so its path must survive; an image's is a mere note.
    if (picture.empty() || (isVideo && listedPath.empty()) || !MakeUserFolder()) {
        Publish(MessageBoxKind::kBackgroundNotSaved);
        return false;
    }
    auto made = BackgroundPicture::Result::kNothingToShow;
    RunWhilePainting([&] {
        made = BackgroundPicture::Make(sourcePath, isVideo, picture);
        return true;
    });
    if (made != BackgroundPicture::Result::kMade) {
        Publish(made == BackgroundPicture::Result::kNotWritten ? MessageBoxKind::kBackgroundNotSaved
                                                               : MessageBoxKind::kFileUnreadable);
        return false;
    }

    // All names are taken: the last one's item makes room. The gallery refuses beforehand.
    if (const auto former = FindCustomItem(name); former != customItems_.end()) {
        ForgetCustomItem(former);
    }
    const std::int32_t index = addCustomItem_.CallOr(-1, name, picture.c_str(), isVideo);
    customItems_.push_back({name, isVideo ? 1 : 0, index, picture, listedPath});
    customByName_[name] = picture;
    if (isVideo) {
        customByName_[name + std::wstring(CustomItemNames::kVideoSuffix)] = sourcePath;
    }
    SettingsStore::Write(SettingNames::kBackgroundImagePath, isVideo ? sourcePath : picture);
    SettingsStore::Write(SettingNames::kCustomImageGroup, CustomImageGroup::Serialise(customItems_));
    SettingsStore::Write(SettingNames::kBackgroundReplacement, FeatureTables::kCustomIndex);
    SettingsStore::Write(SettingNames::kSelectedButtonName, name);
    return true;
}
