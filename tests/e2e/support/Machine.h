#pragma once
// The machine that the program under test runs on: its settings key, its log, and what was opened in the browser.
//
// Why: the end-to-end tests share one user and one session with each other, so each begins by putting things back.
// Threads: the test's.
#include <windows.h>

#include <optional>
#include <string>
#include <vector>

#include "tests/support/Harness.h"
#include "tests/support/Wait.h"

namespace e2e {

using harness::kPatience;
using harness::ProgramFolder;
using harness::WaitUntil;

namespace Machine {

// The program under test, and so the name of its log: "Pixora" unless a test chooses its variant with the demo camera.
void UseProgram(const std::wstring& name);
const std::wstring& ProgramName();

// Removes the settings key, and forgets what the program has logged and the links that were opened.
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
// That line of level 4 comes; any other one fails the test.
void Expect(const std::string& line);

// Why a test of them may be skipped.
inline constexpr char kNoLinks[] = "links would reach the user's browser";
// The addresses that the system's default program was asked to open, oldest first.
std::vector<std::string> OpenedLinks();

}  // namespace Machine
}  // namespace e2e
