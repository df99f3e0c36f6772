#pragma once
// Where a program's crash dumps lie, what they are called, and how many stay. May throw std::bad_alloc.
#include <string>

namespace suite {

inline constexpr std::size_t kKeptDumps = 10;

// %LOCALAPPDATA%\<productName>\CrashDumps, made if it is missing. Characters of the name that a file name cannot have
// become '_'. Empty when there is no such folder and none can be made.
std::wstring MakeDumpFolder(const std::wstring& productName);

// "<program>-<yyyymmdd>-<hhmmssmmm>-<pid>.dmp": the names of one program sort by time.
std::wstring DumpFileName(const std::wstring& program);

// Removes the program's oldest dumps beyond the kept ones.
void RemoveOldDumps(const std::wstring& folder, const std::wstring& program);

}  // namespace suite
