#pragma once
// A folder that stays what it was found to be: as long as it is held nobody can rename, delete or exchange it.
//
// Why: every user of the machine may make folders and junctions beside the program's, so what is looked at by its name
// may be something else a moment later. Any thread. FactsOf may throw std::bad_alloc.
#include <windows.h>

#include <string>

#include "suite/common/FolderFacts.h"
#include "suite/common/Handle.h"

namespace suite {

// The folder itself and not what a link leads to. `access`: beside what FactsOf needs.
Handle HoldFolder(const std::wstring& path, DWORD access = 0);
// Of a held folder of that path.
FolderFacts FactsOf(HANDLE folder, const std::wstring& path);
// Whether something that leads elsewhere lies there: a link, a junction, a file that only stands for one.
bool IsLink(const std::wstring& path);

}  // namespace suite
