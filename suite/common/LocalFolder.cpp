#include "suite/common/LocalFolder.h"

#include <windows.h>

#include <shlobj.h>

#include <algorithm>

namespace suite {

namespace {

constexpr DWORD kLongestPath = 32768;

bool IsAbsolute(const std::wstring& path) {
    const bool onDrive = path.size() >= 3 && path[1] == L':' && (path[2] == L'\\' || path[2] == L'/');
    return onDrive || path.rfind(L"\\\\", 0) == 0;
}

std::wstring WithoutLastBackslash(std::wstring path) {
    while (!path.empty() && (path.back() == L'\\' || path.back() == L'/')) {
        path.pop_back();
    }
    return path;
}

bool IsFolder(const std::wstring& path) {
    const DWORD attributes = GetFileAttributesW(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

}  // namespace

std::wstring LocalDataFolder() {
    std::wstring folder(kLongestPath, L'\0');
    const DWORD length = GetEnvironmentVariableW(L"LOCALAPPDATA", folder.data(), kLongestPath);
    folder.resize(length < kLongestPath ? length : 0);
    if (IsAbsolute(folder)) {
        return WithoutLastBackslash(std::move(folder));
    }
    folder.clear();
    PWSTR known = nullptr;
    if (SUCCEEDED(SHGetKnownFolderPath(FOLDERID_LocalAppData, 0, nullptr, &known))) {
        folder = known;
    }
    CoTaskMemFree(known);
    return WithoutLastBackslash(std::move(folder));
}

bool MakeFolders(const std::wstring& folder) {
    if (CreateDirectoryW(folder.c_str(), nullptr)) {
        return true;
    }
    if (GetLastError() == ERROR_PATH_NOT_FOUND) {
        const std::size_t end = folder.find_last_of(L"\\/");
        if (end == std::wstring::npos || end == 0 || !MakeFolders(folder.substr(0, end))) {
            return false;
        }
        CreateDirectoryW(folder.c_str(), nullptr);
    }
    return IsFolder(folder);
}

std::wstring ProgramPath() {
    std::wstring path(MAX_PATH, L'\0');
    for (;;) {
        const DWORD length = GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
        if (length < path.size()) {
            path.resize(length);
            return path;
        }
        if (path.size() >= kLongestPath) {
            return {};
        }
        path.resize(path.size() * 2);
    }
}

std::wstring ProgramName() {
    std::wstring name = ProgramPath();
    name.erase(0, name.find_last_of(L"\\/") + 1);
    name.erase(std::min(name.find_last_of(L'.'), name.size()));
    return name.empty() ? L"program" : name;
}

}  // namespace suite
