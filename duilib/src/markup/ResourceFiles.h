#pragma once
// The folder that layouts and images are named below. The folder is set once, before the first window; read anywhere
// afterwards. Thread: UI thread.
#include <string>

namespace DuiLib {

void SetResourceFolder(const std::wstring& folder);
// With a backslash at its end; empty: the current folder.
const std::wstring& GetResourceFolder();

// "C:\…" or "\\…".
bool IsFullPath(const std::wstring& file);
// The path of a file of the resource folder; a full path stays as it is.
std::wstring ResourceFile(const std::wstring& file);

}  // namespace DuiLib
