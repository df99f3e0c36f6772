#include "service/pictures/ShellPicture.h"

#include <shlobj.h>

#include "suite/common/ComReference.h"

namespace pictures {

namespace {

using suite::ComReference;

// The item list of a name within a folder; null when the folder does not know it. Freed with CoTaskMemFree.
PIDLIST_RELATIVE Parse(IShellFolder* folder, std::wstring name) {
    PIDLIST_RELATIVE items = nullptr;
    return SUCCEEDED(folder->ParseDisplayName(nullptr, nullptr, name.data(), nullptr, &items, nullptr)) ? items
                                                                                                        : nullptr;
}

ComReference<IExtractImage> Extractor(IShellFolder* desktop, const std::wstring& folderPath,
                                      const std::wstring& fileName) {
    PIDLIST_RELATIVE folderItems = Parse(desktop, folderPath);
    if (!folderItems) {
        return {};
    }
    ComReference<IShellFolder> folder;
    desktop->BindToObject(folderItems, nullptr, IID_IShellFolder, folder.PutVoid());
    CoTaskMemFree(folderItems);
    if (!folder) {
        return {};
    }
    ComReference<IExtractImage> extractor;
    if (PIDLIST_RELATIVE file = Parse(folder.Get(), fileName)) {
        PCUITEMID_CHILD child = reinterpret_cast<PCUITEMID_CHILD>(file);
        folder->GetUIObjectOf(nullptr, 1, &child, IID_IExtractImage, nullptr, extractor.PutVoid());
        CoTaskMemFree(file);
    }
    return extractor;
}

}  // namespace

suite::GdiBitmap ExtractShellPicture(const std::wstring& path, const SIZE* sizePx) {
    const std::size_t slash = path.rfind(L'\\');
    ComReference<IShellFolder> desktop;
    if (slash == std::wstring::npos || FAILED(SHGetDesktopFolder(desktop.Put()))) {
        return {};
    }
    const auto extractor = Extractor(desktop.Get(), path.substr(0, slash), path.substr(slash + 1));
    if (!extractor) {
        return {};
    }
    if (sizePx) {
        // An extractor that cannot be told a size makes a picture of its own.
        wchar_t location[MAX_PATH] = {};
        DWORD priority = 0;
        DWORD flags = IEIFLAG_SCREEN | IEIFLAG_OFFLINE;
        extractor->GetLocation(location, MAX_PATH, &priority, sizePx, 32, &flags);
    }
    HBITMAP picture = nullptr;
    return SUCCEEDED(extractor->Extract(&picture)) ? suite::GdiBitmap(picture) : suite::GdiBitmap();
}

}  // namespace pictures
