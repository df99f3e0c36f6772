#include "setup/WindowsFiles.h"

#include <windows.h>

#include <algorithm>

#include "suite/common/Handle.h"

namespace setup {
namespace {

constexpr DWORD kPatienceMs = 2000;
constexpr DWORD kFirstWaitMs = 10;

bool IsPassing(Error error) {
    // A deletion that waits for the last handle counts as denied.
    return error == ERROR_ACCESS_DENIED || error == ERROR_SHARING_VIOLATION || error == ERROR_LOCK_VIOLATION ||
           error == ERROR_DELETE_PENDING || error == ERROR_USER_MAPPED_FILE;
}

template <typename Try>
Error WithPatience(Try tryOnce) {
    DWORD waited = 0;
    for (DWORD wait = kFirstWaitMs;; wait *= 2) {
        const Error error = tryOnce() ? 0 : GetLastError();
        if (!IsPassing(error) || waited >= kPatienceMs) {
            return error;
        }
        wait = std::min(wait, kPatienceMs - waited);
        Sleep(wait);
        waited += wait;
    }
}

suite::Handle Open(const std::wstring& path, DWORD access, DWORD share) {
    return suite::Handle(CreateFileW(path.c_str(), access, share, nullptr, OPEN_EXISTING, 0, nullptr));
}

std::vector<std::wstring> NamesIn(const std::wstring& folder, bool folders) {
    std::vector<std::wstring> names;
    WIN32_FIND_DATAW found{};
    const HANDLE search = FindFirstFileW((folder + L"\\*").c_str(), &found);
    if (search == INVALID_HANDLE_VALUE) {
        return names;
    }
    do {
        const std::wstring name = found.cFileName;
        const bool isFolder = (found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
        if (isFolder == folders && name != L"." && name != L"..") {
            names.push_back(name);
        }
    } while (FindNextFileW(search, &found));
    FindClose(search);
    return names;
}

std::wstring Wide(const std::string& utf8) {
    const int size = MultiByteToWideChar(CP_UTF8, 0, utf8.data(), static_cast<int>(utf8.size()), nullptr, 0);
    std::wstring text(static_cast<std::size_t>(size), L'\0');
    MultiByteToWideChar(CP_UTF8, 0, utf8.data(), static_cast<int>(utf8.size()), text.data(), size);
    return text;
}

Error ReadAll(const std::wstring& path, std::string& content) {
    const suite::Handle file = Open(path, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE);
    if (!file) {
        return GetLastError();
    }
    char buffer[4096];
    for (DWORD read = 1; read > 0;) {
        if (!ReadFile(file.Get(), buffer, sizeof buffer, &read, nullptr)) {
            return GetLastError();
        }
        content.append(buffer, read);
    }
    return 0;
}

}  // namespace

bool WindowsFiles::Exists(const std::wstring& path) {
    return GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES;
}

std::vector<std::wstring> WindowsFiles::Files(const std::wstring& folder) {
    return NamesIn(folder, false);
}

std::vector<std::wstring> WindowsFiles::Folders(const std::wstring& folder) {
    return NamesIn(folder, true);
}

Error WindowsFiles::ReadLines(const std::wstring& path, std::vector<std::wstring>& lines) {
    std::string content;
    if (const Error error = ReadAll(path, content); error != 0) {
        return error;
    }
    for (std::size_t start = 0; start < content.size();) {
        const std::size_t end = std::min(content.find('\n', start), content.size());
        const bool carriage = end > start && content[end - 1] == '\r';
        lines.push_back(Wide(content.substr(start, end - start - (carriage ? 1 : 0))));
        start = end + 1;
    }
    return 0;
}

// Nobody shares: any handle of another program is in the way, and a file that runs or is mapped cannot be opened to
// write.
Error WindowsFiles::TestUnused(const std::wstring& path) {
    SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_NORMAL);
    return WithPatience([&] { return static_cast<bool>(Open(path, GENERIC_READ | GENERIC_WRITE | DELETE, 0)); });
}

Error WindowsFiles::Flush(const std::wstring& path) {
    return WithPatience([&] {
        const suite::Handle file = Open(path, GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE);
        return file && FlushFileBuffers(file.Get());
    });
}

Error WindowsFiles::Move(const std::wstring& from, const std::wstring& to) {
    return WithPatience([&] { return MoveFileExW(from.c_str(), to.c_str(), MOVEFILE_WRITE_THROUGH) != FALSE; });
}

Error WindowsFiles::Remove(const std::wstring& path) {
    SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_NORMAL);
    return WithPatience([&] { return DeleteFileW(path.c_str()) != FALSE; });
}

Error WindowsFiles::MakeFolder(const std::wstring& path) {
    if (CreateDirectoryW(path.c_str(), nullptr)) {
        return 0;
    }
    const Error error = GetLastError();
    const DWORD attributes = GetFileAttributesW(path.c_str());
    const bool isFolder = attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
    return isFolder ? 0 : error;
}

Error WindowsFiles::RemoveFolder(const std::wstring& path) {
    const Error error = WithPatience([&] { return RemoveDirectoryW(path.c_str()) != FALSE; });
    return error == ERROR_DIR_NOT_EMPTY || error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND ? 0 : error;
}

}  // namespace setup
