#pragma once
// What the system tells of the process behind a pipe, as far as this process may know it.
//
// Why: PipeServerTrust.h decides, and knows no system. A plain user may not look at the process of a service: its user
// then stays empty. Never waits. Any thread. May throw std::bad_alloc.
#include <windows.h>

#include "suite/ipc/PipeServerTrust.h"

namespace suite {

// `pipe`: the client's end, opened for reading.
PipeServerIdentity IdentityOfServer(HANDLE pipe);

}  // namespace suite
