#pragma once
// Names of installed files, as the list of a version has them: relative to the program's folder, with backslashes.
#include <string>
#include <vector>

namespace setup {

// What the exchange treats specially: without it nothing of the program starts.
inline constexpr wchar_t kProgram[] = L"Pixora.exe";
inline constexpr wchar_t kUninstaller[] = L"UninstallPixora.exe";
// Installed with each version: the names of its files, a line each.
inline constexpr wchar_t kInstalledList[] = L"PixoraFiles.txt";

// False for what could lead out of the program's folder, and for nothing at all.
bool IsFileName(const std::wstring& name);

// The folders that the files lie in, each with its parents, longest names first: a folder comes before its parent.
std::vector<std::wstring> FoldersOf(const std::vector<std::wstring>& names);

// Each name once, sorted, the program itself at the end.
std::vector<std::wstring> ProgramLast(std::vector<std::wstring> names);

}  // namespace setup
