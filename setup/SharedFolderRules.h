#pragma once
// Whether a folder in C:\ProgramData, where every user may make folders, can be trusted with the files of all users.
// Pure: SharedFolders.h finds the facts.
#include <string>

#include "suite/common/FolderFacts.h"

namespace setup {

using suite::FolderFacts;

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
