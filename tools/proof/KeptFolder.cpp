#include "tools/proof/KeptFolder.h"

#include <windows.h>

#include "suite/common/FolderListing.h"

namespace proof {

namespace {

bool IsThere(const std::wstring& path) {
    return GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES;
}

std::wstring Parent(const std::wstring& path) {
    return path.substr(0, path.rfind(L'\\'));
}

void RemoveFile(const std::wstring& path) {
    SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_NORMAL);
    DeleteFileW(path.c_str());
}

// A link goes, and what it leads to stays.
void RemoveTree(const std::wstring& folder) {
    for (suite::FolderListing entry(folder + L"\\*"); entry; entry.Next()) {
        const std::wstring path = folder + L"\\" + entry.Name();
        if (!entry.IsFolder()) {
            RemoveFile(path);
        } else if (entry.IsLink()) {
            RemoveDirectoryW(path.c_str());
        } else {
            RemoveTree(path);
        }
    }
    RemoveDirectoryW(folder.c_str());
}

}  // namespace

bool KeptFolder::IsKept() const {
    return IsThere(Moved()) || IsThere(None()) || IsThere(NoParent());
}

bool KeptFolder::Keep() const {
    if (IsThere(folder_)) {
        return MoveFileW(folder_.c_str(), Moved().c_str()) != FALSE;
    }
    const bool isNewParent = CreateDirectoryW(Parent(folder_).c_str(), nullptr) != FALSE;
    return CreateDirectoryW((isNewParent ? NoParent() : None()).c_str(), nullptr) != FALSE;
}

bool KeptFolder::GiveBack() const {
    const DWORD attributes = GetFileAttributesW(folder_.c_str());
    if (attributes != INVALID_FILE_ATTRIBUTES) {
        if ((attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0) {
            RemoveDirectoryW(folder_.c_str());
        } else if ((attributes & FILE_ATTRIBUTE_DIRECTORY) != 0) {
            RemoveTree(folder_);
        } else {
            RemoveFile(folder_);
        }
    }
    if (IsThere(folder_)) {
        return false;
    }
    if (IsThere(Moved())) {
        return MoveFileW(Moved().c_str(), folder_.c_str()) != FALSE;
    }
    RemoveDirectoryW(None().c_str());
    if (RemoveDirectoryW(NoParent().c_str())) {
        RemoveDirectoryW(Parent(folder_).c_str());
    }
    return !IsKept();
}

}  // namespace proof
