#include "tools/proof/Machine.h"

#include <windows.h>

#include <shellscalingapi.h>

#include "service/SettingNames.h"
#include "service/link/ServiceMessages.h"
#include "service/pictures/CustomFolder.h"
#include "suite/common/Handle.h"
#include "suite/common/RegistryKey.h"

namespace proof {

namespace {

constexpr wchar_t kCopy[] = L"SOFTWARE\\PixoraTestsKept";
constexpr wchar_t kProgramMutex[] = L"PixoraUIMutex";

std::vector<KeptRegistry::Place> Places() {
    return {
        {SettingNames::kSystemKeyPath, L""},
        {L"Control Panel\\Desktop", L"LogPixels"},
        {L"Software\\Microsoft\\Windows\\CurrentVersion\\Themes\\Personalize", L"AppsUseLightTheme"},
        {L"Software\\Microsoft\\Accessibility", L"TextScaleFactor"},
    };
}

bool ProgramRuns() {
    return static_cast<bool>(suite::Handle(OpenMutexW(SYNCHRONIZE, FALSE, kProgramMutex)));
}

// Of the main screen, in percent.
unsigned Scale() {
    UINT x = USER_DEFAULT_SCREEN_DPI, y = USER_DEFAULT_SCREEN_DPI;
    GetDpiForMonitor(MonitorFromPoint({0, 0}, MONITOR_DEFAULTTOPRIMARY), MDT_EFFECTIVE_DPI, &x, &y);
    return x * 100 / USER_DEFAULT_SCREEN_DPI;
}

bool ServiceRuns() {
    return WaitNamedPipeW(ServiceMessages::kPipeName, 1) || GetLastError() != ERROR_FILE_NOT_FOUND;
}

// What a test that was ended in the middle leaves.
void RemoveTestKeys() {
    suite::RegistryKey software;
    RegOpenKeyExW(HKEY_CURRENT_USER, L"SOFTWARE", 0, KEY_ALL_ACCESS, software.Put());
    std::vector<std::wstring> names;
    wchar_t name[256];
    for (DWORD i = 0; RegEnumKeyW(software.Get(), i, name, 256) == ERROR_SUCCESS; ++i) {
        const std::wstring key = name;
        if (key.starts_with(L"PixoraTest-") || key == L"PixoraTestLinks" || key == L"PixoraServiceHelper") {
            names.push_back(key);
        }
    }
    for (const std::wstring& key : names) {
        RegDeleteTreeW(software.Get(), key.c_str());
    }
}

}  // namespace

Machine::Machine() : registry_(kCopy), folder_(pictures::CustomFolder::kBase) {}

std::string Machine::Prepare() {
    if (ProgramRuns()) {
        return "Pixora is open. Close it, then start the tests again.";
    }
    if (ServiceRuns()) {
        return "A camera service runs on this PC. The tests stand in for it: stop it, then start them again.";
    }
    if (const unsigned scale = Scale(); scale != 100) {
        return "The scale of the main screen is " + std::to_string(scale) +
               " %, and the tests measure windows at 100 %. Change it in Settings, System, Display, then start them "
               "again.";
    }
    if ((registry_.IsKept() || folder_.IsKept()) && !GiveBack().empty()) {
        return "An earlier run was cut off, and what it kept cannot be given back.";
    }
    if (!folder_.Keep()) {
        return "C:\\ProgramData\\Comms\\LumiCamera cannot be moved aside. Start the tests as administrator, or on a PC "
               "where Pixora is not installed.";
    }
    if (!registry_.Keep(Places())) {
        GiveBack();
        return "The registry cannot be kept.";
    }
    foreground_.emplace();
    // Neither sleep nor a dark screen before the last test.
    SetThreadExecutionState(ES_CONTINUOUS | ES_SYSTEM_REQUIRED | ES_DISPLAY_REQUIRED);
    return {};
}

std::vector<std::string> Machine::GiveBack() {
    SetThreadExecutionState(ES_CONTINUOUS);
    foreground_.reset();
    std::vector<std::string> remarks;
    RemoveTestKeys();
    if (registry_.IsKept() && !registry_.GiveBack()) {
        remarks.push_back(
            "Not all of the registry could be given back. What was kept is in HKEY_CURRENT_USER\\SOFTWARE\\"
            "PixoraTestsKept; the next run tries again.");
    }
    if (folder_.IsKept() && !folder_.GiveBack()) {
        remarks.push_back(
            "C:\\ProgramData\\Comms\\LumiCamera could not be given back. What was kept is beside it; the "
            "next run tries again.");
    }
    return remarks;
}

}  // namespace proof
