#include "preview/ServedWait.h"

#include <algorithm>

namespace preview {

namespace {

using Clock = std::chrono::steady_clock;

DWORD RestMs(Clock::time_point end) {
    const auto rest = std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now());
    return static_cast<DWORD>(std::max<long long>(0, rest.count()));
}

void ServeSentMessages() {
    MSG message;
    PeekMessageW(&message, nullptr, 0, 0, PM_NOREMOVE | PM_QS_SENDMESSAGE);
}

}  // namespace

bool WaitServed(HANDLE handle, std::chrono::milliseconds atMost) {
    const Clock::time_point end = Clock::now() + atMost;
    for (;;) {
        const DWORD reason = MsgWaitForMultipleObjectsEx(1, &handle, RestMs(end), QS_SENDMESSAGE, MWMO_INPUTAVAILABLE);
        if (reason != WAIT_OBJECT_0 + 1) {
            return reason == WAIT_OBJECT_0;
        }
        ServeSentMessages();
    }
}

void PauseServed(std::chrono::milliseconds time) {
    const Clock::time_point end = Clock::now() + time;
    while (MsgWaitForMultipleObjectsEx(0, nullptr, RestMs(end), QS_SENDMESSAGE, MWMO_INPUTAVAILABLE) == WAIT_OBJECT_0) {
        ServeSentMessages();
    }
}

}  // namespace preview
