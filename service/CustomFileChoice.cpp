#include "service/CustomFileChoice.h"

#include <cderr.h>
#include <commdlg.h>

#include <array>
#include <memory>
#include <optional>

#include "preview/ImageReader.h"
#include "preview/VideoReader.h"
#include "service/FileUtil.h"
#include "service/GlobalUtils.h"
#include "service/KindNotifier.h"
#include "service/pictures/PaintingWait.h"
#include "service/pictures/VideoCover.h"
#include "suite/common/SystemLibrary.h"
#include "suite/logger/QxLogger.h"

namespace service {

using GlobalUtils::MessageBoxKind;

namespace {

constinit suite::SystemLibrary comdlg32(L"comdlg32.dll");
constinit suite::SystemFunction<decltype(&GetOpenFileNameW)> getOpenFileName(comdlg32, "GetOpenFileNameW");
constinit suite::SystemFunction<decltype(&CommDlgExtendedError)> extendedError(comdlg32, "CommDlgExtendedError");

constexpr DWORD kPathSize = 260;
constexpr wchar_t kFilter[] = L"Image File\0*.jpg;*.jpeg;*.bmp;*.png;*.mp4;*.mov\0";
constexpr UINT kMaxImageWidth = 4096;
constexpr UINT kMaxImageHeight = 4096;
constexpr UINT kMaxVideoWidth = 1920;
constexpr UINT kMaxVideoHeight = 1200;

struct Size {
    UINT width = 0;
    UINT height = 0;
};

// On a thread of its own, with a limit: the file may lie on a share that is gone, or its decoder hang.
template <typename Reader, typename GetSize>
std::optional<Size> LookAt(const std::wstring& path, GetSize getSize) {
    const auto size = std::make_shared<Size>();
    const bool opened = pictures::RunWhilePainting(
        [path, size, getSize] {
            Reader reader;
            return reader.Open(path) && getSize(reader, *size);
        },
        pictures::kVideoPatience);
    return opened ? std::optional(*size) : std::nullopt;
}

}  // namespace

bool CustomFileChoice::AskForFile(std::wstring& path) const {
    std::array<wchar_t, kPathSize> buffer{};
    OPENFILENAMEW dialog = {};
    dialog.lStructSize = sizeof(dialog);
    dialog.hwndOwner = owner_;
    dialog.lpstrFilter = kFilter;
    dialog.nFilterIndex = 1;
    dialog.lpstrFile = buffer.data();
    dialog.nMaxFile = kPathSize;
    // The last two flags: the file is not written to, and the process stays in its own folder, so that it does not keep
    // the user's in use.
    dialog.Flags = OFN_PATHMUSTEXIST | OFN_FILEMUSTEXIST | OFN_HIDEREADONLY | OFN_NOCHANGEDIR;
    if (!getOpenFileName.CallOr(FALSE, &dialog)) {
        const DWORD error = extendedError.CallOr(CDERR_INITIALIZATION);
        if (error != 0) {
            LogLine(LogLevel::kError, L"HomeService::ChooseCustomFile", L"The file dialog failed: ", error);
            if (error == FNERR_BUFFERTOOSMALL) {
                // A path of more characters than the system's tools take.
                PublishMessage(MessageBoxKind::kFileUnreadable);
            }
        }
        return false;
    }
    path = buffer.data();
    return true;
}

bool CustomFileChoice::Choose(std::wstring& path) const {
    std::wstring chosen;
    if (!AskForFile(chosen)) {
        return false;
    }
    bool accepted = true;
    if (FileUtil::GetInstance().IsImageFile(chosen)) {
        accepted = CheckImageFile(chosen);
    } else if (FileUtil::GetInstance().IsVideoFile(chosen)) {
        accepted = CheckVideoFile(chosen);
    }
    if (accepted) {
        path = chosen;
    }
    return accepted;
}

bool CustomFileChoice::IsAccepted(const std::wstring& path) {
    if (FileUtil::GetInstance().IsImageFile(path)) {
        return CheckImageFile(path);
    }
    if (FileUtil::GetInstance().IsVideoFile(path)) {
        return CheckVideoFile(path);
    }
    PublishMessage(MessageBoxKind::kFileUnreadable);
    return false;
}

bool CustomFileChoice::CheckImageFile(const std::wstring& path) {
    const std::optional<Size> size = LookAt<ImageReader>(
        path, [](ImageReader& reader, Size& found) { return reader.GetSize(&found.width, &found.height); });
    if (!size) {
        PublishMessage(MessageBoxKind::kFileUnreadable);
        return false;
    }
    if (size->width > kMaxImageWidth || size->height > kMaxImageHeight) {
        PublishMessage(MessageBoxKind::kImageTooLarge);
        return false;
    }
    return true;
}

bool CustomFileChoice::CheckVideoFile(const std::wstring& path) {
    const std::optional<Size> size = LookAt<VideoReader>(
        path, [](VideoReader& reader, Size& found) { return reader.GetFrameSize(&found.width, &found.height); });
    if (!size) {
        PublishMessage(MessageBoxKind::kFileUnreadable);
        return false;
    }
    if (size->width > kMaxVideoWidth || size->height > kMaxVideoHeight) {
        PublishMessage(MessageBoxKind::kVideoTooLarge);
        return false;
    }
    return true;
}

}  // namespace service
