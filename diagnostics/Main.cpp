// PixoraDiagnostics: finds out why Pixora does not work on a machine.
#include <windows.h>

#include <lmcons.h>
#include <shellscalingapi.h>

#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

#include "diagnostics/Options.h"
#include "diagnostics/Sections.h"
#include "diagnostics/Version.h"
#include "service/CustomImageGroup.h"
#include "service/SettingNames.h"
#include "service/SettingsStore.h"
#include "suite/common/ComApartment.h"
#include "suite/common/Handle.h"
#include "suite/common/ProcessStart.h"

namespace diagnostics {
namespace {

constexpr DWORD kLongestName = 256;  // of a domain, with its terminator

// Of the environment; empty when there is none.
std::wstring Variable(const wchar_t* name) {
    wchar_t value[kLongestName] = {};
    return GetEnvironmentVariableW(name, value, kLongestName) < kLongestName ? value : L"";
}

std::wstring FileName(const std::wstring& path) {
    return path.substr(path.find_last_of(L"\\/") + 1);
}

// Of the user, and of the files that the user took for backgrounds.
std::vector<std::wstring> PersonalNames() {
    wchar_t user[UNLEN + 1] = {};
    DWORD userSize = UNLEN + 1;
    GetUserNameW(user, &userSize);
    std::vector<std::wstring> names{user, Variable(L"USERNAME")};
    std::wstring group;
    SettingsStore::Read(SettingNames::kCustomImageGroup, group);
    for (const CustomImageRecord& record : CustomImageGroup::Parse(group)) {
        names.push_back(FileName(record.sourcePath));
    }
    return names;
}

// Of the computer and of the domain that the user signed in to. No network is asked.
std::vector<std::wstring> MachineNames() {
    std::vector<std::wstring> names;
    for (int format = ComputerNameNetBIOS; format < ComputerNameMax; ++format) {
        wchar_t computer[kLongestName] = {};
        DWORD size = kLongestName;
        GetComputerNameExW(static_cast<COMPUTER_NAME_FORMAT>(format), computer, &size);
        names.emplace_back(computer);
    }
    for (const wchar_t* variable :
         {L"COMPUTERNAME", L"USERDOMAIN", L"USERDOMAIN_ROAMINGPROFILE", L"USERDNSDOMAIN", L"LOGONSERVER"}) {
        const std::wstring name = Variable(variable);
        names.push_back(name.substr(std::min(name.find_first_not_of(L'\\'), name.size())));
    }
    return names;
}

std::string Now() {
    SYSTEMTIME now;
    GetSystemTime(&now);
    char text[64];
    std::snprintf(text, sizeof text, "%04d-%02d-%02d %02d:%02d:%02d UTC", now.wYear, now.wMonth, now.wDay, now.wHour,
                  now.wMinute, now.wSecond);
    return text;
}

bool WriteAll(HANDLE output, const std::string& text) {
    for (std::size_t at = 0; at < text.size();) {
        DWORD written = 0;
        if (!WriteFile(output, text.data() + at, static_cast<DWORD>(text.size() - at), &written, nullptr)) {
            return false;
        }
        at += written;
    }
    return true;
}

// True when the program was started with a double click: its console closes with it.
bool HasConsoleOfItsOwn() {
    DWORD mode = 0;
    DWORD processes[2] = {};
    return GetConsoleMode(GetStdHandle(STD_INPUT_HANDLE), &mode) &&
           GetConsoleMode(GetStdHandle(STD_OUTPUT_HANDLE), &mode) && GetConsoleProcessList(processes, 2) == 1;
}

void WaitForReader() {
    WriteAll(GetStdHandle(STD_OUTPUT_HANDLE), "\nPress Enter to close this window.");
    char line[2];
    DWORD read = 0;
    ReadFile(GetStdHandle(STD_INPUT_HANDLE), line, sizeof line, &read, nullptr);
}

int Run(const std::vector<std::wstring>& words) {
    const auto options = ParseOptions(words);
    if (!options) {
        WriteAll(GetStdHandle(STD_ERROR_HANDLE), kHelp);
        return kWrongUsage;
    }
    const HANDLE standardOutput = GetStdHandle(STD_OUTPUT_HANDLE);
    if (options->help) {
        return WriteAll(standardOutput, kHelp) ? kAllFine : kNotWritten;
    }
    // Opened first, so that a report that cannot be kept is not made.
    suite::Handle file;
    if (!options->outputFile.empty()) {
        file = suite::Handle(CreateFileW(options->outputFile.c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr,
                                         CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
        if (!file) {
            WriteAll(GetStdHandle(STD_ERROR_HANDLE), "the report cannot be written there\n");
            return kNotWritten;
        }
    }
    Report report;
    const PersonalData personal(PersonalNames(), MachineNames());
    AddProgram(report, personal);
    AddSettings(report);
    AddCameras(report, personal);
    AddService(report);
    AddFolders(report, personal);
    AddScreens(report);
    AddLook(report);
    AddLog(report, personal);
    const std::string text = "Pixora diagnostics " + std::string(kVersion) + ", " + Now() + "\n\n" + report.Text();
    if (!WriteAll(file ? file.Get() : standardOutput, text)) {
        return kNotWritten;
    }
    if (file) {
        WriteAll(standardOutput, "The report is written. What is wrong: " + std::to_string(report.WrongCount()) + "\n");
    }
    return report.WrongCount() == 0 ? kAllFine : kSomethingWrong;
}

}  // namespace
}  // namespace diagnostics

int wmain(int argc, wchar_t** argv) {
    suite::PrepareProcess();
    SetConsoleOutputCP(CP_UTF8);
    SetProcessDpiAwareness(PROCESS_PER_MONITOR_DPI_AWARE);
    const suite::ComApartment com(suite::ComApartment::Kind::kMultiThreaded);
    int status = diagnostics::kNotWritten;
    try {
        status = diagnostics::Run({argv + 1, argv + argc});
        if (diagnostics::HasConsoleOfItsOwn()) {
            diagnostics::WaitForReader();
        }
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
    }
    return status;
}
