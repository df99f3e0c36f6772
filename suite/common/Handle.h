#pragma once
// The owner of one kernel handle (file, event, mutex, process, thread, token); INVALID_HANDLE_VALUE counts as none.
#include <windows.h>

#include "suite/common/Owner.h"

namespace suite {

struct KernelHandle {
    using Raw = HANDLE;
    static Raw Valid(Raw handle) { return handle == INVALID_HANDLE_VALUE ? nullptr : handle; }
    static void Close(Raw handle) { CloseHandle(handle); }
};

using Handle = Owner<KernelHandle>;

}  // namespace suite
