#include "windows/VideoThumbnail.h"

#include <windows.h>

#include <algorithm>
#include <array>
#include <string_view>

#include "service/pictures/ShellPicture.h"
#include "suite/common/ComApartment.h"
#include "suite/common/Handle.h"

namespace {

constexpr int kWidthDip = 64;
constexpr int kHeightDip = 36;
constexpr std::array<std::wstring_view, 7> kVideoExtensions = {L".mp4", L".avi",  L".mkv", L".mov",
                                                               L".flv", L".rmvb", L".wmv"};

// What std::ifstream would ask, in the system's words: shared for reading and writing.
bool CanBeRead(const std::wstring& path) {
    const suite::Handle file(CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                         OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    return static_cast<bool>(file);
}

}  // namespace

bool VideoThumbnail::IsVideoPath(const std::wstring& path) {
    const std::size_t dot = path.rfind(L'.');
    if (dot == std::wstring::npos) {
        return false;
    }
    const std::wstring_view extension = std::wstring_view(path).substr(dot);
    return std::find(kVideoExtensions.begin(), kVideoExtensions.end(), extension) != kVideoExtensions.end();
}

void VideoThumbnail::Register(DuiLib::CPaintManagerUI& manager, const std::wstring& path) {
    if (manager.HasImage(path) || path.empty() || path == withoutCover_) {
        return;
    }
    if (!CanBeRead(path) || !IsVideoPath(path)) {
        return;
    }
    const suite::ComApartment apartment(suite::ComApartment::Kind::kSingleThreaded);
    // The extractor's own size: the image is scaled when it is registered.
    suite::GdiBitmap cover = pictures::ExtractShellPicture(path);
    if (!cover || !manager.AddImage(path, cover.Detach(), kWidthDip, kHeightDip, false, false)) {
        withoutCover_ = path;
    }
}
