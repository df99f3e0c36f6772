#pragma once
// Tries a file operation again for as long as neighbours hold the file: virus scanners, indexers and synchronisers open
// each new file a moment after it was closed, and let go of it soon.
//
// Only errors that such a neighbour causes are worth waiting for; all others are told at once. The waits double from
// 10 ms to 100, for one that comes again and again lets go for moments only; after two seconds the last error counts.
// Threads: any but one that must answer, for it sleeps.
#include <windows.h>

#include <algorithm>

namespace suite {

// Whether an operation that failed so may succeed a moment later.
constexpr bool IsHeldByOthers(DWORD error) {
    switch (error) {
        case ERROR_ACCESS_DENIED:  // also for a name whose file is deleted and still open
        case ERROR_SHARING_VIOLATION:
        case ERROR_LOCK_VIOLATION:
        case ERROR_DELETE_PENDING:
        case ERROR_USER_MAPPED_FILE:
            return true;
        default:
            return false;
    }
}

inline constexpr DWORD kFirstHoldWaitMs = 10;
inline constexpr DWORD kMostHoldWaitMs = 100;
inline constexpr DWORD kLongestHoldMs = 2000;

// `attempt`: true, or false with the reason as the thread's last error, which is kept.
template <typename Attempt>
[[nodiscard]] bool TryWhileHeld(const Attempt& attempt) {
    DWORD waited = 0;
    for (DWORD wait = kFirstHoldWaitMs;; wait = std::min(2 * wait, kMostHoldWaitMs)) {
        if (attempt()) {
            return true;
        }
        const DWORD error = GetLastError();
        if (!IsHeldByOthers(error) || waited >= kLongestHoldMs) {
            SetLastError(error);
            return false;
        }
        const DWORD left = std::min(wait, kLongestHoldMs - waited);
        Sleep(left);
        waited += left;
    }
}

}  // namespace suite
