#include "suite/ipc/SentMessageWait.h"

namespace suite {

void WaitServingSentMessages(HANDLE handle) {
    while (MsgWaitForMultipleObjectsEx(1, &handle, INFINITE, QS_SENDMESSAGE, MWMO_INPUTAVAILABLE) ==
           WAIT_OBJECT_0 + 1) {
        // Looking into the queue is what runs the window procedures; no posted message is touched.
        MSG message;
        PeekMessageW(&message, nullptr, 0, 0, PM_NOREMOVE | PM_QS_SENDMESSAGE);
    }
    // For a thread that cannot wait for messages; at once in every other case.
    WaitForSingleObject(handle, INFINITE);
}

}  // namespace suite
