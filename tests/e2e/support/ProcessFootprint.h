#pragma once
// What a process holds of the system, to see whether it grows. Any thread.
#include <windows.h>

#include <cstddef>
#include <string>

namespace e2e {

struct ProcessFootprint {
    std::size_t residentBytes = 0;
    int handles = 0;
    int threads = 0;
    int gdiObjects = 0;

    std::string Text() const;
};

// Of a process that this one may read. A number that the system does not tell is 0.
ProcessFootprint FootprintOf(HANDLE process, DWORD processId);

}  // namespace e2e
