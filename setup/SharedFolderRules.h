#pragma once
// Whether a folder in C:\ProgramData, where every user may make folders, can be trusted with the files of all users.
// Pure: SharedFolders.h finds the facts.
#include <string>

namespace setup {

struct FolderFacts {
    // The system's number when the folder could not be looked at; then nothing below counts.
    unsigned long error = 0;
    bool isFolder = false;
    // A junction or another reparse point: it leads to somewhere else.
    bool isLink = false;
    // Identifier in text form.
    std::wstring owner;
};

enum class Verdict {
    kMissing,
    kSound,
    // A true folder, but of somebody who may change its rights at any time.
    kForeign,
    // A link or a file.
    kPlanted,
    kUnreadable,
};

// `ownUser`: who runs the installation, which takes an administrator.
Verdict Judge(const FolderFacts& facts, const std::wstring& ownUser);

}  // namespace setup
