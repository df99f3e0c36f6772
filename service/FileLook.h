#pragma once
// Whether files that the user or the registry names are there, without waiting for long.
//
// Why: a path may lead to a share that does not answer, and each touch of it takes 20 seconds and more. The files are
// looked at on a thread of their own, all within one limit; what it does not know by then stays unknown, which is no
// reason to take a record away.
// Thread: UI thread, which paints meanwhile.
#include <chrono>
#include <string>
#include <vector>

namespace service {

enum class FileLook {
    kThere,
    kGone,     // missing in a folder that can be read
    kUnknown,  // cannot be looked at, or not in time
};

inline constexpr std::chrono::seconds kLookPatience{5};

// As long as it takes: for files in the program's own folders, which are this machine's.
FileLook LookAtOwnFile(const std::wstring& path);
// One for each path.
std::vector<FileLook> LookAtFiles(std::vector<std::wstring> paths);

// A path that the registry's list can hold: the list has no escape for its separators, so a path with one becomes the
// system's short one. Empty when there is none, or not in time.
std::wstring ListedPath(const std::wstring& path);

}  // namespace service
