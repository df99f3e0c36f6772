#include "markup/ResourceFiles.h"

namespace DuiLib {
namespace {

std::wstring& Folder() {
    static std::wstring folder;
    return folder;
}

}  // namespace

void SetResourceFolder(const std::wstring& folder) {
    Folder() = folder;
    if (!folder.empty() && folder.back() != L'\\' && folder.back() != L'/') {
        Folder() += L'\\';
    }
}

const std::wstring& GetResourceFolder() {
    return Folder();
}

bool IsFullPath(const std::wstring& file) {
    return file.starts_with(L"\\\\") || (file.size() > 1 && file[1] == L':');
}

std::wstring ResourceFile(const std::wstring& file) {
    return IsFullPath(file) ? file : Folder() + file;
}

}  // namespace DuiLib
