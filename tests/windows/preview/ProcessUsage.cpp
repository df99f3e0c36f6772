#include "tests/windows/preview/ProcessUsage.h"

#include <windows.h>

#include <tlhelp32.h>
#include <winternl.h>

#include <cstddef>
#include <cstdio>
#include <vector>

namespace {

void CountHeapBlocks(ProcessUsage& usage) {
    std::vector<HANDLE> heaps(GetProcessHeaps(0, nullptr));
    heaps.resize(GetProcessHeaps(static_cast<DWORD>(heaps.size()), heaps.data()));
    for (HANDLE heap : heaps) {
        HeapLock(heap);
        PROCESS_HEAP_ENTRY entry = {};
        while (HeapWalk(heap, &entry)) {
            if (entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) {
                usage.heapBytes += entry.cbData;
                ++usage.heapBlocks;
            }
        }
        HeapUnlock(heap);
    }
}

struct HandleEntry {
    ULONG processId;
    BYTE type;
    BYTE flags;
    USHORT value;
    void* object;
    ACCESS_MASK access;
};
struct HandleList {
    ULONG count;
    HandleEntry entries[1];
};

long CountHandles() {
    constexpr auto kHandles = static_cast<SYSTEM_INFORMATION_CLASS>(16);
    constexpr NTSTATUS kTooShort = static_cast<NTSTATUS>(0xC0000004);
    std::vector<BYTE> buffer(std::size_t{1} << 18);
    NTSTATUS status = 0;
    while ((status = NtQuerySystemInformation(kHandles, buffer.data(), static_cast<ULONG>(buffer.size()), nullptr)) ==
           kTooShort) {
        buffer.resize(2 * buffer.size());
    }
    if (status < 0)
        return -1;
    const auto* list = reinterpret_cast<const HandleList*>(buffer.data());
    long handles = 0;
    for (ULONG i = 0; i < list->count; ++i)
        handles += list->entries[i].processId == GetCurrentProcessId() ? 1 : 0;
    return handles;
}

long CountThreads() {
    long threads = 0;
    HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0);
    THREADENTRY32 entry = {};
    entry.dwSize = sizeof entry;
    for (BOOL more = Thread32First(snapshot, &entry); more; more = Thread32Next(snapshot, &entry))
        threads += entry.th32OwnerProcessID == GetCurrentProcessId() ? 1 : 0;
    CloseHandle(snapshot);
    return threads;
}

}  // namespace

ProcessUsage ProcessUsage::Now() {
    ProcessUsage usage;
    CountHeapBlocks(usage);
    usage.handles = CountHandles();
    usage.guiObjects = static_cast<long>(GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS) +
                                         GetGuiResources(GetCurrentProcess(), GR_USEROBJECTS));
    usage.threads = CountThreads();
    return usage;
}

void ProcessUsage::Print(const char* when) const {
    std::printf("%-8s heap %lld KiB in %ld blocks, %ld handles, %ld GUI objects, %ld threads\n", when, heapBytes / 1024,
                heapBlocks, handles, guiObjects, threads);
    std::fflush(stdout);
}
