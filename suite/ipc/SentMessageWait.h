#pragma once
// Waits for a handle, and lets windows of the calling thread answer messages that other threads send them meanwhile.
//
// Why: a callback on the client's thread may be inside SendMessage to a window of the very thread that now waits for
// the callback to return; a plain wait would be a deadlock. Posted messages stay in the queue.
// Threads: any. REQUIRES: the caller holds no lock, since window procedures run in here; the handle stays
// signalled once it is (a thread, an event with manual reset).
#include <windows.h>

namespace suite {

void WaitServingSentMessages(HANDLE handle);

}  // namespace suite
