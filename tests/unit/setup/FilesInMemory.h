#pragma once
// A file system in memory whose changes can be counted, stopped and made to fail. It keeps Windows' rules: names
// without regard to case, nothing is moved onto something or into a folder that is not there, only an empty folder
// goes.
#include <map>
#include <set>
#include <string>

#include "setup/FileSystem.h"

namespace setup {

// The machine stops; what was done until then stays.
struct Stopped {};

class FilesInMemory : public FileSystem {
  public:
    static constexpr int kNever = -1;
    static constexpr Error kNotFound = 2, kPathNotFound = 3, kExists = 183;

    // The change after that many stops the machine; kNever: none does.
    void StopAfter(int changes) { stopAfter_ = changes; }
    // The change after that many does not happen and returns `error`; the others do.
    void FailAfter(int changes, Error error) {
        failAfter_ = changes;
        failure_ = error;
    }
    int Changes() const { return changes_; }
    void ForgetChanges() { changes_ = 0; }
    std::map<std::wstring, std::wstring>& Contents() { return files_; }
    std::set<std::wstring>& FolderNames() { return folders_; }
    // Files that a program has open.
    std::set<std::wstring>& InUse() { return inUse_; }
    const std::set<std::wstring>& Flushed() const { return flushed_; }
    // With all folders above it.
    void Put(const std::wstring& path, const std::wstring& content);

    bool Exists(const std::wstring& path) override;
    std::vector<std::wstring> Files(const std::wstring& folder) override;
    std::vector<std::wstring> Folders(const std::wstring& folder) override;
    Error ReadLines(const std::wstring& path, std::vector<std::wstring>& lines) override;
    Error TestUnused(const std::wstring& path) override;
    Error Flush(const std::wstring& path) override;
    Error Move(const std::wstring& from, const std::wstring& to) override;
    Error Remove(const std::wstring& path) override;
    Error MakeFolder(const std::wstring& path) override;
    Error RemoveFolder(const std::wstring& path) override;

  private:
    Error Change();
    void MoveFolder(const std::wstring& source, const std::wstring& target);

    std::map<std::wstring, std::wstring> files_;
    std::set<std::wstring> folders_, inUse_, flushed_;
    int changes_ = 0, stopAfter_ = kNever, failAfter_ = kNever;
    Error failure_ = 0;
};

}  // namespace setup
