#pragma once
// Tells whether the picture in a part of the screen moves: a live camera picture does, an illustration does not.
// Any thread.
#include <windows.h>

// Waits until the pixels of the rectangle have become different several times. False: they did not within the time.
bool WaitForMotion(const RECT& screenPx, DWORD timeoutMs);
