#pragma once
// A text file that several threads and processes append whole lines to at the same time.
//
// Why: two instances of one program write into the same log, and others may read, rename or delete it meanwhile. Each
// line goes to the system with one write at the end of the file, so that it survives a crash of the process; nothing
// is buffered, and there is no thread or timer. A named mutex keeps writers and rotation apart. When its holder hangs,
// the line is written without it rather than lost.
// A file that reached its size limit is renamed to "name.1.log" (and older ones one number up), or, when no older
// files are kept, takes no more lines until somebody empties it.
// Threads: operations from any thread. Nothing throws but the constructor (std::bad_alloc).
#include <windows.h>

#include <cstdint>
#include <string>
#include <string_view>

#include "suite/common/Handle.h"

namespace suite {

class SharedAppendFile {
  public:
    // `limitBytes`: a file of this size takes no further line. `olderFiles`: how many full ones are kept.
    SharedAppendFile(std::wstring path, std::uint64_t limitBytes, int olderFiles);

    // The name of the mutex that all writers of that path share.
    static std::wstring MutexName(const std::wstring& path);

    const std::wstring& Path() const { return path_; }

    // Creates the folders and the file, whoever holds the mutex. False when the file cannot be written; a later Append
    // tries again.
    bool Open();
    // Writes `line` as it is. False when it could not be written or the file is full. Waits for the mutex, half a
    // second at most.
    bool Append(std::string_view line);
    // As Append, and false at once when somebody keeps the mutex; then nothing was written.
    bool AppendSoon(std::string_view line);
    // Closes the file until the next Append.
    void Close();

  private:
    bool EnsureRoom();
    bool Reopen();
    Handle OpenWithFolders() const;
    bool Rotate();
    Handle OpenForAppend() const;
    std::wstring OlderPath(int number) const;

    // Constant after construction.
    const std::wstring path_;
    const std::uint64_t limitBytes_;
    const int olderFiles_;
    const Handle mutex_;

    // Guarded by mutex_.
    Handle file_;
    std::uint64_t nextRotation_;  // after a failed rotation: the size at which to try again
};

}  // namespace suite
