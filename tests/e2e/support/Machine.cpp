#include "tests/e2e/support/Machine.h"

#include <fstream>

#include "suite/common/Utf8.h"
#include "tests/support/SettingsKey.h"
#include "tests/support/TestLog.h"

namespace e2e {

namespace SettingsKey = harness::SettingsKey;
namespace TestLog = harness::TestLog;

namespace {

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

// The stand-in for the desktop's opener, which the test run puts first on the path, writes here. Empty: there is none.
std::wstring LinksFile() {
    wchar_t path[MAX_PATH] = {};
    const bool isNamed = GetEnvironmentVariableW(L"PIXORA_OPENED_LINKS", path, MAX_PATH) > 0;
    return isNamed ? L"Z:" + std::wstring(path) : std::wstring();
}

}  // namespace

namespace Machine {

void UseProgram(const std::wstring& name) {
    g_program = name;
}

const std::wstring& ProgramName() {
    return g_program;
}

void Reset() {
    SettingsKey::Delete();
    TestLog::StartOver();
    if (const std::wstring links = LinksFile(); !links.empty()) {
        DeleteFileW(links.c_str());
    }
}

void ResetToInstalled() {
    Reset();
    SettingsKey::SetInstalled();
}

void SetNumber(const wchar_t* name, DWORD value) {
    SettingsKey::Set(name, static_cast<int>(value));
}

void SetText(const wchar_t* name, const std::wstring& value) {
    SettingsKey::Set(name, value);
}

void Remove(const wchar_t* name) {
    SettingsKey::Remove(name);
}

std::optional<DWORD> Number(const wchar_t* name) {
    const auto number = SettingsKey::Number(name);
    return number ? std::optional(static_cast<DWORD>(*number)) : std::nullopt;
}

std::optional<std::wstring> Text(const wchar_t* name) {
    return SettingsKey::Text(name);
}

std::vector<std::string> Log() {
    return TestLog::Lines(suite::ToUtf8(g_program));
}

bool LogHolds(const std::string& line) {
    return TestLog::Count(line, suite::ToUtf8(g_program)) > 0;
}

bool WaitForLog(const std::string& line) {
    return TestLog::WaitFor(line, suite::ToUtf8(g_program));
}

void Expect(const std::string& line) {
    TestLog::Expect(line);
}

std::vector<std::string> OpenedLinks() {
    return LinesOf(LinksFile());
}

}  // namespace Machine
}  // namespace e2e
