#pragma once
// Whether the folders of the user's own backgrounds may be used: every user of the machine may make folders and
// junctions in C:\ProgramData, and what is written or copied there would end up wherever somebody else wants it.
// Pure, any thread.
#include <string>

#include "suite/common/FolderFacts.h"

namespace service {

// The shared folder, whoever made it: older versions let the first user do that.
bool MayUseSharedFolder(const suite::FolderFacts& facts);
// Its folder of one user: the user's own, or made for them by the system, an administrator or this program's account.
bool MayUseUserFolder(const suite::FolderFacts& facts, const std::wstring& userSid, const std::wstring& ownUser);

}  // namespace service
