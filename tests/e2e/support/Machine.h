#pragma once
// The machine that the program under test runs on: its settings key, its log, and what was opened in the browser.
//
// Why: the end-to-end tests share one user and one session with each other, so each begins by putting things back.
// Threads: the test's.
#include <windows.h>

#include <chrono>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace e2e {

inline constexpr std::chrono::seconds kPatience{20};

// Looks at `condition` until it holds or the time is over; the last answer.
bool WaitUntil(const std::function<bool()>& condition, std::chrono::milliseconds atMost = kPatience);

// Folder of the tests' programs, which is the program's too; with a trailing backslash.
std::wstring ProgramFolder();

namespace Machine {

// The program under test, and so the name of its log: "Pixora" unless a test chooses its variant with the demo camera.
void UseProgram(const std::wstring& name);
const std::wstring& ProgramName();

// Removes the settings key and the program's log, and forgets the links that were opened.
void Reset();
// Reset, and the key as an installation with a working driver and algorithm leaves it.
void ResetToInstalled();
void SetNumber(const wchar_t* name, DWORD value);
void SetText(const wchar_t* name, const std::wstring& value);
void Remove(const wchar_t* name);
std::optional<DWORD> Number(const wchar_t* name);
std::optional<std::wstring> Text(const wchar_t* name);

// Lines of the program's log without time and thread: "[L3] text(function)".
std::vector<std::string> Log();
bool LogHolds(const std::string& line);
bool WaitForLog(const std::string& line);
// Lines of level 4, but for those of `expected`.
std::vector<std::string> UnexpectedFailures(const std::vector<std::string>& expected = {});

// The addresses that the system's default program was asked to open, oldest first.
std::vector<std::string> OpenedLinks();

}  // namespace Machine
}  // namespace e2e
