#pragma once
// For the end of the Windows session, after which the process may end at any moment without any clean-up.
// Threads: any. Nothing throws.
#include "suite/common/Export.h"

namespace suite {

// Waits until no line of the log waits for another process any more; two seconds at most.
SUITE_LOGGER_API void WriteOutLog();

}  // namespace suite
