#include "suite/common/ProcessStart.h"

#include <windows.h>

namespace suite {

void PrepareProcess() {
    SetDefaultDllDirectories(LOAD_LIBRARY_SEARCH_SYSTEM32);
    SetErrorMode(GetErrorMode() | SEM_FAILCRITICALERRORS);
}

}  // namespace suite
