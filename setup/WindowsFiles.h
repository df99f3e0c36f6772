#pragma once
// The machine's files. What an antivirus, an indexer or a backup holds for a moment is tried again, for two seconds.
// One thread; waits there.
#include <string>
#include <vector>

#include "setup/FileSystem.h"

namespace setup {

class WindowsFiles : public FileSystem {
  public:
    bool Exists(const std::wstring& path) override;
    std::vector<std::wstring> Files(const std::wstring& folder) override;
    std::vector<std::wstring> Folders(const std::wstring& folder) override;
    // UTF-8, lines that end with \n or \r\n.
    Error ReadLines(const std::wstring& path, std::vector<std::wstring>& lines) override;
    // Also takes the read-only mark away, which would keep the file from being tested and from going.
    Error TestUnused(const std::wstring& path) override;
    Error Flush(const std::wstring& path) override;
    Error Move(const std::wstring& from, const std::wstring& to) override;
    Error Remove(const std::wstring& path) override;
    Error MakeFolder(const std::wstring& path) override;
    Error RemoveFolder(const std::wstring& path) override;
};

}  // namespace setup
