#include "tests/e2e/support/Machine.h"

#include <shlobj.h>

#include <fstream>

namespace e2e {

namespace {

constexpr wchar_t kKey[] = L"SOFTWARE\\Velmora\\Quillon\\LumiCamera";

std::wstring g_program = L"Pixora";

std::vector<std::string> LinesOf(const std::wstring& path) {
    std::vector<std::string> lines;
    std::ifstream file(path.c_str());
    for (std::string line; std::getline(file, line);) {
        if (!line.empty() && line.back() == '\r')
            line.pop_back();
        lines.push_back(line);
    }
    return lines;
}

std::wstring LogFolder() {
    PWSTR folder = nullptr;
    SHGetKnownFolderPath(FOLDERID_LocalAppData, 0, nullptr, &folder);
    const std::wstring result = std::wstring(folder ? folder : L"") + L"\\Velmora\\Quillon\\Logs\\";
    CoTaskMemFree(folder);
    return result;
}

std::wstring LogFile() {
    return LogFolder() + g_program + L".log";
}

// The stand-in for the desktop's opener, which the test run puts first on the path, writes here.
std::wstring LinksFile() {
    wchar_t path[MAX_PATH] = {};
    GetEnvironmentVariableW(L"PIXORA_OPENED_LINKS", path, MAX_PATH);
    return L"Z:" + std::wstring(path);
}

}  // namespace

bool WaitUntil(const std::function<bool()>& condition, std::chrono::milliseconds atMost) {
    const auto end = std::chrono::steady_clock::now() + atMost;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end)
            return condition();
        Sleep(10);
    }
    return true;
}

std::wstring ProgramFolder() {
    wchar_t path[MAX_PATH] = {};
    GetModuleFileNameW(nullptr, path, MAX_PATH);
    std::wstring folder = path;
    return folder.substr(0, folder.rfind(L'\\') + 1);
}

namespace Machine {

void UseProgram(const std::wstring& name) {
    g_program = name;
}

const std::wstring& ProgramName() {
    return g_program;
}

void Reset() {
    RegDeleteTreeW(HKEY_CURRENT_USER, kKey);
    DeleteFileW(LogFile().c_str());
    DeleteFileW(LinksFile().c_str());
}

void ResetToInstalled() {
    Reset();
    SetNumber(L"filter_driver_install", 1);
    SetNumber(L"init_algorithm", 1);
}

void SetNumber(const wchar_t* name, DWORD value) {
    RegSetKeyValueW(HKEY_CURRENT_USER, kKey, name, REG_DWORD, &value, sizeof(value));
}

void SetText(const wchar_t* name, const std::wstring& value) {
    RegSetKeyValueW(HKEY_CURRENT_USER, kKey, name, REG_SZ, value.c_str(),
                    static_cast<DWORD>((value.size() + 1) * sizeof(wchar_t)));
}

void Remove(const wchar_t* name) {
    RegDeleteKeyValueW(HKEY_CURRENT_USER, kKey, name);
}

std::optional<DWORD> Number(const wchar_t* name) {
    DWORD value = 0;
    DWORD size = sizeof(value);
    if (RegGetValueW(HKEY_CURRENT_USER, kKey, name, RRF_RT_REG_DWORD, nullptr, &value, &size))
        return std::nullopt;
    return value;
}

std::optional<std::wstring> Text(const wchar_t* name) {
    std::vector<wchar_t> value(64 * 1024);
    DWORD size = static_cast<DWORD>(value.size() * sizeof(wchar_t));
    if (RegGetValueW(HKEY_CURRENT_USER, kKey, name, RRF_RT_REG_SZ, nullptr, value.data(), &size))
        return std::nullopt;
    return value.data();
}

std::vector<std::string> Log() {
    std::vector<std::string> result;
    for (const std::string& line : LinesOf(LogFile())) {
        const std::size_t level = line.find("[L");
        const std::size_t thread = line.find("] [", level);
        const std::size_t text = line.find("] ", thread + 3);
        if (level == std::string::npos || thread == std::string::npos || text == std::string::npos)
            continue;
        result.push_back(line.substr(level, thread + 1 - level) + " " + line.substr(text + 2));
    }
    return result;
}

bool LogHolds(const std::string& line) {
    for (const std::string& logged : Log()) {
        if (logged == line)
            return true;
    }
    return false;
}

bool WaitForLog(const std::string& line) {
    return WaitUntil([&] { return LogHolds(line); });
}

std::vector<std::string> UnexpectedFailures(const std::vector<std::string>& expected) {
    std::vector<std::string> result;
    for (const std::string& line : Log()) {
        if (!line.starts_with("[L4]"))
            continue;
        bool known = false;
        for (const std::string& text : expected)
            known = known || line == text;
        if (!known)
            result.push_back(line);
    }
    return result;
}

std::vector<std::string> OpenedLinks() {
    return LinesOf(LinksFile());
}

}  // namespace Machine
}  // namespace e2e
