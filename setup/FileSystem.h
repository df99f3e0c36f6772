#pragma once
// The few operations on files that an exchange of installed files consists of, each of which either happened or did
// not, also when the machine stops at any moment. WindowsFiles is the real one; the tests have one in memory that stops
// or fails at a chosen operation. Paths are whole and have backslashes. One thread.
#include <string>
#include <vector>

namespace setup {

// A number of the system, 0 when all went well.
using Error = unsigned long;

class FileSystem {
  public:
    virtual ~FileSystem() = default;

    // A file or a folder of this name.
    virtual bool Exists(const std::wstring& path) = 0;
    // Names only; none for a folder that is not there.
    virtual std::vector<std::wstring> Files(const std::wstring& folder) = 0;
    virtual std::vector<std::wstring> Folders(const std::wstring& folder) = 0;
    [[nodiscard]] virtual Error ReadLines(const std::wstring& path, std::vector<std::wstring>& lines) = 0;

    // 0 when no program has the file open or runs from it.
    [[nodiscard]] virtual Error TestUnused(const std::wstring& path) = 0;
    // Returns when the content of the file is on the disk.
    [[nodiscard]] virtual Error Flush(const std::wstring& path) = 0;
    // A file or a folder; REQUIRES: `to` does not exist, its folder does, on the same volume.
    [[nodiscard]] virtual Error Move(const std::wstring& from, const std::wstring& to) = 0;
    [[nodiscard]] virtual Error Remove(const std::wstring& path) = 0;
    // 0 when it is there already; REQUIRES: its parent exists.
    [[nodiscard]] virtual Error MakeFolder(const std::wstring& path) = 0;
    // Leaves a folder alone that is not empty, which is no failure.
    [[nodiscard]] virtual Error RemoveFolder(const std::wstring& path) = 0;
};

}  // namespace setup
