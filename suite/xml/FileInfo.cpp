#include "suite/xml/FileInfo.h"

#include "suite/common/LocalFolder.h"
#include "suite/common/Utf8.h"

std::string FileInfo::GetSelfFullFilePath(const std::string& relativePath) {
    try {
        const std::wstring program = suite::ProgramPath();
        const std::size_t end = program.find_last_of(L'\\');
        return end == std::wstring::npos ? std::string() : suite::ToUtf8(program.substr(0, end + 1)) + relativePath;
    } catch (...) {
        return {};
    }
}
