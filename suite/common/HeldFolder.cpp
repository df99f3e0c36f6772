#include "suite/common/HeldFolder.h"

#include "suite/common/UserSid.h"

namespace suite {

Handle HoldFolder(const std::wstring& path, DWORD access) {
    return Handle(CreateFileW(path.c_str(), FILE_LIST_DIRECTORY | FILE_READ_ATTRIBUTES | READ_CONTROL | access,
                              FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING,
                              FILE_FLAG_BACKUP_SEMANTICS | FILE_FLAG_OPEN_REPARSE_POINT, nullptr));
}

FolderFacts FactsOf(HANDLE folder, const std::wstring& path) {
    FolderFacts facts;
    BY_HANDLE_FILE_INFORMATION information{};
    // By name too: Wine tells a link there only.
    const DWORD byName = GetFileAttributesW(path.c_str());
    if (!GetFileInformationByHandle(folder, &information) || byName == INVALID_FILE_ATTRIBUTES) {
        facts.error = GetLastError();
        return facts;
    }
    facts.isFolder = (information.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
    facts.isLink = ((information.dwFileAttributes | byName) & FILE_ATTRIBUTE_REPARSE_POINT) != 0;
    facts.owner = OwnerSid(folder, facts.error);
    return facts;
}

bool IsLink(const std::wstring& path) {
    const DWORD attributes = GetFileAttributesW(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0;
}

}  // namespace suite
