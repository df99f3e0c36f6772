#pragma once
// Walks the entries of a folder that match a pattern; "." and ".." are left out.
//
//     for (FolderListing entry(folder + L"\\*.jpg"); entry; entry.Next()) { … entry.Name() … }
//
// Any thread. The walk may or may not see what is added or deleted meanwhile.
#include <windows.h>

#include <string>
#include <string_view>

#include "suite/common/Owner.h"

namespace suite {

struct FolderSearch {
    using Raw = HANDLE;
    static Raw Valid(Raw search) { return search == INVALID_HANDLE_VALUE ? nullptr : search; }
    static void Close(Raw search) { FindClose(search); }
};

class FolderListing {
  public:
    explicit FolderListing(const std::wstring& pattern) : search_(FindFirstFileW(pattern.c_str(), &entry_)) {
        if (!search_) {
            error_ = GetLastError();
        } else if (IsDots()) {
            Next();
        }
    }

    // On an entry; false at the end.
    explicit operator bool() const { return static_cast<bool>(search_); }
    void Next() {
        do {
            if (!FindNextFileW(search_.Get(), &entry_)) {
                error_ = GetLastError();
                search_.Reset();
            }
        } while (search_ && IsDots());
    }

    const WIN32_FIND_DATAW& Entry() const { return entry_; }
    const wchar_t* Name() const { return entry_.cFileName; }
    bool IsFolder() const { return (entry_.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0; }
    // It leads to somewhere else.
    bool IsLink() const { return (entry_.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0; }

    // Once at the end: true when every entry was seen, none being there included; false when the folder, or the rest
    // of it, cannot be looked at.
    bool IsComplete() const { return error_ == ERROR_NO_MORE_FILES || error_ == ERROR_FILE_NOT_FOUND; }

  private:
    bool IsDots() const {
        const std::wstring_view name = entry_.cFileName;
        return name == L"." || name == L"..";
    }

    WIN32_FIND_DATAW entry_{};
    Owner<FolderSearch> search_;
    DWORD error_ = ERROR_SUCCESS;
};

}  // namespace suite
