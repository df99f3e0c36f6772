#include "suite/crashdump/DumpFolder.h"

#include <windows.h>

#include <algorithm>
#include <cwchar>
#include <iterator>
#include <vector>

#include "suite/common/FolderListing.h"
#include "suite/common/LocalFolder.h"

namespace suite {

namespace {

std::wstring AsFileName(std::wstring name) {
    for (wchar_t& c : name) {
        if (c < L' ' || std::wstring(L"\\/:*?\"<>|").find(c) != std::wstring::npos) {
            c = L'_';
        }
    }
    // The system drops trailing dots and blanks, and "." and ".." are folders of their own.
    while (!name.empty() && (name.back() == L'.' || name.back() == L' ')) {
        name.pop_back();
    }
    return name;
}

}  // namespace

std::wstring MakeDumpFolder(const std::wstring& productName) {
    const std::wstring local = LocalDataFolder();
    const std::wstring product = AsFileName(productName);
    const std::wstring folder = local + L"\\" + (product.empty() ? ProgramName() : product) + L"\\CrashDumps";
    return !local.empty() && MakeFolders(folder) ? folder : std::wstring();
}

std::wstring DumpFileName(const std::wstring& program) {
    SYSTEMTIME now;
    GetLocalTime(&now);
    wchar_t rest[80];
    std::swprintf(rest, std::size(rest), L"-%04d%02d%02d-%02d%02d%02d%03d-%lu.dmp", now.wYear, now.wMonth, now.wDay,
                  now.wHour, now.wMinute, now.wSecond, now.wMilliseconds, GetCurrentProcessId());
    return program + rest;
}

void RemoveOldDumps(const std::wstring& folder, const std::wstring& program) {
    std::vector<std::wstring> names;
    for (FolderListing entry(folder + L"\\" + program + L"-*.dmp"); entry; entry.Next()) {
        const std::wstring name = entry.Name();
        // Not those of a program whose name only begins like this one's.
        if (name.size() > program.size() + 1 && name[program.size() + 1] >= L'0' && name[program.size() + 1] <= L'9') {
            names.push_back(name);
        }
    }
    std::sort(names.begin(), names.end());
    for (std::size_t i = 0; i + kKeptDumps < names.size(); ++i) {
        DeleteFileW((folder + L"\\" + names[i]).c_str());
    }
}

}  // namespace suite
