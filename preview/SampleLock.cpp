#include "preview/SampleLock.h"

namespace preview {

bool SampleLock::EnterWithin(std::chrono::milliseconds atMost) {
    // A critical section has no handle to wait for. A picture takes a few milliseconds, and no further one begins
    // while somebody who waits here has told the reader's thread so.
    constexpr std::chrono::milliseconds kBetweenLooks(1);
    const auto end = std::chrono::steady_clock::now() + atMost;
    while (!TryEnterCriticalSection(&section_)) {
        if (std::chrono::steady_clock::now() >= end) {
            return false;
        }
        PauseServed(kBetweenLooks);
    }
    return true;
}

}  // namespace preview
