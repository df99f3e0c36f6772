#include "setup/FileNames.h"

#include <algorithm>
#include <set>

namespace setup {

bool IsFileName(const std::wstring& name) {
    if (name.empty() || name.front() == L'\\' || name.find_first_of(L":/") != std::wstring::npos) {
        return false;
    }
    const std::wstring enclosed = L"\\" + name + L"\\";
    return enclosed.find(L"\\..\\") == std::wstring::npos;
}

std::vector<std::wstring> FoldersOf(const std::vector<std::wstring>& names) {
    std::set<std::wstring> folders;
    for (const std::wstring& name : names) {
        for (std::size_t end = name.rfind(L'\\'); end != std::wstring::npos; end = name.rfind(L'\\', end - 1)) {
            folders.insert(name.substr(0, end));
        }
    }
    std::vector<std::wstring> sorted(folders.begin(), folders.end());
    std::stable_sort(sorted.begin(), sorted.end(),
                     [](const std::wstring& a, const std::wstring& b) { return a.size() > b.size(); });
    return sorted;
}

std::vector<std::wstring> ProgramLast(std::vector<std::wstring> names) {
    std::sort(names.begin(), names.end());
    names.erase(std::unique(names.begin(), names.end()), names.end());
    std::stable_partition(names.begin(), names.end(), [](const std::wstring& name) { return name != kProgram; });
    return names;
}

}  // namespace setup
