#pragma once
// Exchanges the files of an installed version for those of another, or for none, so that at every moment a next run can
// bring back what was there before: nothing is deleted before the exchange is complete, and the program itself goes
// first and comes last, so that no mixture of two versions ever starts.
//
// The installer has unpacked into <program's folder>\Pixora.setup:
//     files.txt   names of the new version's files     new\   these files
// During an exchange old\ holds what was moved out of the way, and the list is named moving-in.txt while new files may
// lie in the program's folder. The last step names old\ gone\: from there on the new version counts. Whatever else lies
// in the program's folder belongs to other programs and is not touched. One thread.
#include <string>
#include <vector>

#include "setup/FileSystem.h"

namespace setup {

enum class Result { kDone, kInUse, kFailed };

struct Outcome {
    Result result = Result::kDone;
    // What could not be done: with which file, and the system's reason.
    std::wstring path;
    Error error = 0;
};

class Exchange {
  public:
    // `files` is borrowed; must outlive this.
    Exchange(FileSystem& files, std::wstring programFolder);

    // Ends what an earlier run began: files that were moved away come back, what it unpacked goes.
    [[nodiscard]] Outcome Recover();
    // The unpacked version takes the place of the installed one. After any other outcome than kDone the installed
    // version is whole as before, or the next Recover makes it so. REQUIRES: Recover has succeeded in this run.
    [[nodiscard]] Outcome Install();
    // The installed version's files go, but for the uninstaller. REQUIRES: as Install.
    [[nodiscard]] Outcome Remove();
    // Deletes what was exchanged away and what was unpacked.
    [[nodiscard]] Outcome Clean();

  private:
    std::wstring InProgram(const std::wstring& name) const { return program_ + L"\\" + name; }
    std::vector<std::wstring> InstalledNames();
    Outcome FlushUnpacked(const std::vector<std::wstring>& names);
    Outcome TestUnused(const std::vector<std::wstring>& names);
    Outcome MoveAway(const std::vector<std::wstring>& names);
    Outcome MoveIn(const std::vector<std::wstring>& names);
    Outcome RemoveEmptyFolders(const std::vector<std::wstring>& names);
    Outcome Finish(Outcome outcome);
    Outcome PutBack();
    Outcome MoveOut();
    Outcome Move(const std::wstring& from, const std::wstring& to, const std::wstring& name);
    Outcome RemoveTree(const std::wstring& folder);
    std::vector<std::wstring> NamesBelow(const std::wstring& folder, const std::wstring& prefix);

    FileSystem& files_;
    const std::wstring program_, work_, list_, listInUse_, unpacked_, kept_, gone_;
};

}  // namespace setup
