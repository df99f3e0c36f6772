#include <windows.h>

#include <cstdio>
#include <deque>
#include <filesystem>
#include <fstream>
#include <string>

#include "diagnostics/LastRun.h"
#include "diagnostics/Sections.h"
#include "suite/common/FolderListing.h"
#include "suite/common/LocalFolder.h"
#include "suite/common/Utf8.h"

namespace diagnostics {

namespace {

constexpr std::size_t kLastLines = 40;

int CountFiles(const std::wstring& pattern) {
    int count = 0;
    for (suite::FolderListing entry(pattern); entry; entry.Next()) {
        ++count;
    }
    return count;
}

// "UTC+01:00"
std::string ZoneOfLocalTime() {
    TIME_ZONE_INFORMATION zone{};
    const DWORD season = GetTimeZoneInformation(&zone);
    const LONG seasonsBias = season == TIME_ZONE_ID_DAYLIGHT   ? zone.DaylightBias
                             : season == TIME_ZONE_ID_STANDARD ? zone.StandardBias
                                                               : 0;
    const LONG aheadMinutes = -(zone.Bias + seasonsBias);
    const LONG distance = aheadMinutes < 0 ? -aheadMinutes : aheadMinutes;
    char text[32];
    std::snprintf(text, sizeof text, "UTC%c%02ld:%02ld", aheadMinutes < 0 ? '-' : '+', distance / 60, distance % 60);
    return text;
}

}  // namespace

void AddLog(Report& report, const PersonalData& personal) {
    report.Section("Last lines of Pixora's log");
    const std::wstring local = suite::LocalDataFolder();
    const std::wstring path = local + L"\\Velmora\\Quillon\\Logs\\Pixora.log";
    report.Note(suite::ToUtf8(personal.Mask(path)) + ", its times are " + ZoneOfLocalTime());
    std::ifstream file(std::filesystem::path(path), std::ios::binary);
    std::deque<std::string> lines;
    LastRun run;
    for (std::string line; std::getline(file, line);) {
        lines.push_back(line);
        run.Add(line);
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
    report.Note(run.Text());
    const int dumps = CountFiles(local + L"\\QUILLON\\CrashDumps\\Pixora-*.dmp");
    report.Note("crash dumps of Pixora: " + std::to_string(dumps));
}

}  // namespace diagnostics
