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
    int gdiObjects = 0;  // without the regions, of which some systems keep what no program holds any more
    int regions = 0;

    std::string Text() const;
};

// Of a process that this one may read. A number that the system does not tell is 0.
ProcessFootprint FootprintOf(HANDLE process, DWORD processId);

// Processor time that a process has used so far, user and kernel, in milliseconds. Wine tells a fixed number for every
// process but the asking one, so it is looked up by the program's path in the system below where there is one.
double ProcessorMs(HANDLE process);

}  // namespace e2e
