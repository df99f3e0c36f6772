#pragma once
// Waits of a thread that owns windows: what other threads send to them is handled meanwhile, so that whoever sends does
// not wait for this thread, and this thread not for them. Input and posted messages stay in their queue. On a thread
// without windows they are plain waits. Any thread.
#include <windows.h>

#include <chrono>

namespace preview {

// False when the time was over first.
bool WaitServed(HANDLE handle, std::chrono::milliseconds atMost);

// Only lets the time pass.
void PauseServed(std::chrono::milliseconds time);

}  // namespace preview
