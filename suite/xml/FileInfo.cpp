#include "suite/xml/FileInfo.h"

#include <algorithm>

#include "suite/common/LocalFolder.h"
#include "suite/common/Utf8.h"

std::string FileInfo::GetSelfFullFilePath(const std::string& relativePath) {
    try {
        std::wstring path = suite::ProgramPath();
        if (path.empty()) {
            return {};
        }
        path.erase(path.find_last_of(L'\\') + 1);
        const std::size_t start = relativePath.find_first_not_of("\\/");
        return suite::ToUtf8(path) + relativePath.substr(std::min(start, relativePath.size()));
    } catch (...) {
        return {};
    }
}
