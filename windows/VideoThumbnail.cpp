#include "windows/VideoThumbnail.h"

#include <shlobj.h>

#include <algorithm>
#include <array>
#include <string_view>

#include "suite/common/ComRelease.h"

namespace {

constexpr int kWidthDip = 64;
constexpr int kHeightDip = 36;
constexpr std::array<std::wstring_view, 7> kVideoExtensions = {L".mp4", L".avi",  L".mkv", L".mov",
                                                               L".flv", L".rmvb", L".wmv"};

// What std::ifstream would ask, in the system's words: shared for reading and writing.
bool CanBeRead(const std::wstring& path) {
    const HANDLE file = CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                    OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        return false;
    CloseHandle(file);
    return true;
}

// The item list of a name within a folder; null when the folder does not know it. Freed with CoTaskMemFree.
PIDLIST_RELATIVE Parse(IShellFolder* folder, std::wstring name) {
    PIDLIST_RELATIVE items = nullptr;
    return SUCCEEDED(folder->ParseDisplayName(nullptr, nullptr, name.data(), nullptr, &items, nullptr)) ? items
                                                                                                        : nullptr;
}

IExtractImage* Extractor(IShellFolder* desktop, const std::wstring& folderPath, const std::wstring& fileName) {
    PIDLIST_RELATIVE folderItems = Parse(desktop, folderPath);
    if (!folderItems)
        return nullptr;
    void* folderObject = nullptr;
    desktop->BindToObject(folderItems, nullptr, IID_IShellFolder, &folderObject);
    CoTaskMemFree(folderItems);
    auto* folder = static_cast<IShellFolder*>(folderObject);
    if (!folder)
        return nullptr;

    void* extractor = nullptr;
    if (PIDLIST_RELATIVE file = Parse(folder, fileName)) {
        PCUITEMID_CHILD child = reinterpret_cast<PCUITEMID_CHILD>(file);
        folder->GetUIObjectOf(nullptr, 1, &child, IID_IExtractImage, nullptr, &extractor);
        CoTaskMemFree(file);
    }
    ComRelease(folder);
    return static_cast<IExtractImage*>(extractor);
}

HBITMAP ExtractCover(const std::wstring& path) {
    const std::size_t slash = path.rfind(L'\\');
    if (slash == std::wstring::npos)
        return nullptr;
    IShellFolder* desktop = nullptr;
    if (FAILED(SHGetDesktopFolder(&desktop)))
        return nullptr;
    HBITMAP cover = nullptr;
    IExtractImage* extractor = Extractor(desktop, path.substr(0, slash), path.substr(slash + 1));
    // Without GetLocation the extractor's own size applies; the image is scaled when it is registered.
    if (extractor && FAILED(extractor->Extract(&cover)))
        cover = nullptr;
    ComRelease(extractor);
    ComRelease(desktop);
    return cover;
}

}  // namespace

bool VideoThumbnail::IsVideoPath(const std::wstring& path) {
    const std::size_t dot = path.rfind(L'.');
    if (dot == std::wstring::npos)
        return false;
    const std::wstring_view extension = std::wstring_view(path).substr(dot);
    return std::find(kVideoExtensions.begin(), kVideoExtensions.end(), extension) != kVideoExtensions.end();
}

void VideoThumbnail::Register(DuiLib::CPaintManagerUI& manager, const std::wstring& path) {
    if (manager.HasImage(path) || path.empty() || path == withoutCover_)
        return;
    if (!CanBeRead(path) || !IsVideoPath(path))
        return;
    const HRESULT com = CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED | COINIT_DISABLE_OLE1DDE);
    const HBITMAP cover = ExtractCover(path);
    if (!cover || !manager.AddImage(path, cover, kWidthDip, kHeightDip, false, false))
        withoutCover_ = path;
    if (SUCCEEDED(com))
        CoUninitialize();
}
