#pragma once
// A neighbour as a virus scanner is one: opens each new or changed file of a folder a moment after it appeared and
// holds it, unshared, for 50 to 300 ms. Runs in service_helper; never returns. Thread: the program's only one.
#include <string>

// `held`: name of a semaphore that is released once for each file that was held.
void HoldNewFiles(const std::wstring& folder, const std::wstring& held);
