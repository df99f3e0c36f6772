#include "service/pictures/ShellPicture.h"

#include <shlobj.h>

#include "suite/common/ComRelease.h"

namespace {

// The item list of a name within a folder; null when the folder does not know it. Freed with CoTaskMemFree.
PIDLIST_RELATIVE Parse(IShellFolder* folder, std::wstring name) {
    PIDLIST_RELATIVE items = nullptr;
    return SUCCEEDED(folder->ParseDisplayName(nullptr, nullptr, name.data(), nullptr, &items, nullptr)) ? items
                                                                                                        : nullptr;
}

IExtractImage* Extractor(IShellFolder* desktop, const std::wstring& folderPath, const std::wstring& fileName) {
    PIDLIST_RELATIVE folderItems = Parse(desktop, folderPath);
    if (!folderItems) {
        return nullptr;
    }
    void* folderObject = nullptr;
    desktop->BindToObject(folderItems, nullptr, IID_IShellFolder, &folderObject);
    CoTaskMemFree(folderItems);
    auto* folder = static_cast<IShellFolder*>(folderObject);
    if (!folder) {
        return nullptr;
    }
    void* extractor = nullptr;
    if (PIDLIST_RELATIVE file = Parse(folder, fileName)) {
        PCUITEMID_CHILD child = reinterpret_cast<PCUITEMID_CHILD>(file);
        folder->GetUIObjectOf(nullptr, 1, &child, IID_IExtractImage, nullptr, &extractor);
        CoTaskMemFree(file);
    }
    ComRelease(folder);
    return static_cast<IExtractImage*>(extractor);
}

}  // namespace

HBITMAP ExtractShellPicture(const std::wstring& path, const SIZE* sizePx) {
    const std::size_t slash = path.rfind(L'\\');
    if (slash == std::wstring::npos) {
        return nullptr;
    }
    IShellFolder* desktop = nullptr;
    if (FAILED(SHGetDesktopFolder(&desktop))) {
        return nullptr;
    }
    HBITMAP picture = nullptr;
    if (IExtractImage* extractor = Extractor(desktop, path.substr(0, slash), path.substr(slash + 1))) {
        if (sizePx != nullptr) {
            // An extractor that cannot be told a size makes a picture of its own.
            wchar_t location[MAX_PATH] = {};
            DWORD priority = 0;
            DWORD flags = IEIFLAG_SCREEN | IEIFLAG_OFFLINE;
            extractor->GetLocation(location, MAX_PATH, &priority, sizePx, 32, &flags);
        }
        if (FAILED(extractor->Extract(&picture))) {
            picture = nullptr;
        }
        ComRelease(extractor);
    }
    ComRelease(desktop);
    return picture;
}
