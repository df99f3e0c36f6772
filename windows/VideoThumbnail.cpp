#include "windows/VideoThumbnail.h"

#include <objbase.h>

#include <algorithm>
#include <array>
#include <string_view>

#include "service/pictures/ShellPicture.h"

namespace {

constexpr int kWidthDip = 64;
constexpr int kHeightDip = 36;
constexpr std::array<std::wstring_view, 7> kVideoExtensions = {L".mp4", L".avi",  L".mkv", L".mov",
                                                               L".flv", L".rmvb", L".wmv"};

// What std::ifstream would ask, in the system's words: shared for reading and writing.
bool CanBeRead(const std::wstring& path) {
    const HANDLE file = CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                    OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) {
        return false;
    }
    CloseHandle(file);
    return true;
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
    const HRESULT com = CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED | COINIT_DISABLE_OLE1DDE);
    // The extractor's own size: the image is scaled when it is registered.
    const HBITMAP cover = ExtractShellPicture(path);
    if (!cover || !manager.AddImage(path, cover, kWidthDip, kHeightDip, false, false)) {
        withoutCover_ = path;
    }
    if (SUCCEEDED(com)) {
        CoUninitialize();
    }
}
