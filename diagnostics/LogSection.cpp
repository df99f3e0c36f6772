#include <windows.h>

#include <deque>
#include <filesystem>
#include <fstream>
#include <string>

#include "diagnostics/Sections.h"
#include "suite/common/LocalFolder.h"
#include "suite/common/Utf8.h"

namespace diagnostics {

namespace {

constexpr std::size_t kLastLines = 40;

int CountFiles(const std::wstring& pattern) {
    int count = 0;
    WIN32_FIND_DATAW found;
    const HANDLE search = FindFirstFileW(pattern.c_str(), &found);
    if (search == INVALID_HANDLE_VALUE) {
        return 0;
    }
    do {
        ++count;
    } while (FindNextFileW(search, &found));
    FindClose(search);
    return count;
}

}  // namespace

void AddLog(Report& report, const PersonalData& personal) {
    report.Section("Last lines of Pixora's log");
    const std::wstring local = suite::LocalDataFolder();
    std::ifstream file(std::filesystem::path(local + L"\\Velmora\\Quillon\\Logs\\Pixora.log"), std::ios::binary);
    std::deque<std::string> lines;
    for (std::string line; std::getline(file, line);) {
        lines.push_back(line);
        if (lines.size() > kLastLines) {
            lines.pop_front();
        }
    }
    for (const std::string& line : lines) {
        report.Note(suite::ToUtf8(personal.Mask(suite::FromUtf8(line))));
    }
    if (lines.empty()) {
        report.Note("there are none");
    }
    const int dumps = CountFiles(local + L"\\QUILLON\\CrashDumps\\Pixora-*.dmp");
    report.Note("crash dumps of Pixora: " + std::to_string(dumps));
}

}  // namespace diagnostics
