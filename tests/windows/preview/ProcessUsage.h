#pragma once
// What this process holds: live heap blocks, handles, threads. Any thread; the counts are of the moment.
//
// Why not the system's own counters: some systems answer 0 to GetProcessMemoryInfo's private bytes,
// GetProcessHandleCount and GetGuiResources. The objects of GDI and USER are counted only where the system tells them.
struct ProcessUsage {
    long long heapBytes = 0;  // of the blocks that are in use, in all heaps of the process
    long heapBlocks = 0;
    long handles = 0;
    long guiObjects = 0;
    long threads = 0;

    static ProcessUsage Now();
    void Print(const char* when) const;
};
