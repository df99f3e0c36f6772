#include "service/FileUtil.h"

#include <windows.h>

#include <sddl.h>
#include <shlwapi.h>

#include "service/pictures/FileKinds.h"
#include "suite/common/Patience.h"
#include "suite/logger/QxLogger.h"

namespace {

constexpr const wchar_t* kEverybodysFolder = L"D:(A;CIOI;GA;;;BU)(A;CIOI;GA;;;AU)(A;CIOI;GA;;;CO)(A;CIOI;GA;;;BA)";

// The error number; ERROR_SUCCESS when the folder was made.
DWORD CreateEverybodysFolder(const std::wstring& path) {
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    if (!ConvertStringSecurityDescriptorToSecurityDescriptorW(kEverybodysFolder, SDDL_REVISION_1, &descriptor,
                                                              nullptr)) {
        return GetLastError();
    }
    SECURITY_ATTRIBUTES attributes{sizeof(attributes), descriptor, FALSE};
    const DWORD error = CreateDirectoryW(path.c_str(), &attributes) ? ERROR_SUCCESS : GetLastError();
    LocalFree(descriptor);
    return error;
}

}  // namespace

FileUtil& FileUtil::GetInstance() {
    static FileUtil instance;
    return instance;
}

bool FileUtil::IsVideoFile(const std::wstring& path) const {
    return pictures::FileKinds::IsVideo(path);
}

bool FileUtil::IsImageFile(const std::wstring& path) const {
    return pictures::FileKinds::IsImage(path);
}

bool FileUtil::FileExists(const std::wstring& path) const {
    return GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES;
}

bool FileUtil::IsGone(const std::wstring& path) const {
    if (FileExists(path)) {
        return false;
    }
    const DWORD error = GetLastError();
    if (error != ERROR_FILE_NOT_FOUND && error != ERROR_PATH_NOT_FOUND) {
        return false;
    }
    const std::size_t slash = path.find_last_of(L"\\/");
    return slash != std::wstring::npos && PathIsDirectoryW(path.substr(0, slash + 1).c_str()) != FALSE;
}

bool FileUtil::CreateResDirectory(const std::wstring& path) const {
    if (PathIsDirectoryW(path.c_str())) {
        LogLine(LogLevel::kInfo, L"FileUtil::CreateResDirectory", L"Now Directory is Exist");
        return true;
    }
    const DWORD error = CreateEverybodysFolder(path);
    if (error != ERROR_SUCCESS) {
        LogLine(LogLevel::kInfo, L"FileUtil::CreateResDirectory", L"Now Directory create Failed", error);
        return false;
    }
    return true;
}

bool FileUtil::CopyFileToDest(const std::wstring& source, const std::wstring& destination) const {
    if (!suite::TryWhileHeld([&] { return CopyFileW(source.c_str(), destination.c_str(), FALSE) != FALSE; })) {
        const DWORD error = GetLastError();
        LogLine(LogLevel::kError, L"HomeService::CopyFileToDest", L"Copy File To Resource Fail,ErrorCode:", error);
        return false;
    }
    return true;
}
