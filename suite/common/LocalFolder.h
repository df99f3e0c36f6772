#pragma once
// The folders and names that the suite libraries build their files' paths from. Any thread. May throw std::bad_alloc.
#include <string>

namespace suite {

// The user's local application data folder, without a backslash at the end: the environment variable LOCALAPPDATA
// when it holds an absolute path (a test or an administrator may redirect it), else the shell's answer. Empty when
// there is neither.
std::wstring LocalDataFolder();

// Creates a folder with its missing parents. True when it is there afterwards.
bool MakeFolders(const std::wstring& folder);

// The full path of the running program; empty when the system does not tell.
std::wstring ProgramPath();
// The running program's file name without folder and extension; "program" when the system does not tell.
std::wstring ProgramName();

}  // namespace suite
