#include "tests/e2e/support/ProcessFootprint.h"

#include <psapi.h>
#include <tlhelp32.h>
#include <winternl.h>

#include <cstdint>
#include <vector>

namespace e2e {

namespace {

// Layouts that the SDK's headers do not have; the same on all 64-bit systems.
struct HandleEntry {
    void* object;
    ULONG_PTR processId;
    ULONG_PTR handle;
    ULONG access;
    USHORT creatorIndex;
    USHORT typeIndex;
    ULONG attributes;
    ULONG reserved;
};
struct HandleTable {
    ULONG_PTR count;
    ULONG_PTR reserved;
    HandleEntry entries[1];
};
struct GdiEntry {
    std::uint64_t object;
    std::uint16_t processId;
    std::uint16_t count;
    std::uint16_t upper;
    std::uint16_t type;
    std::uint64_t user;
};
constexpr auto kExtendedHandles = static_cast<SYSTEM_INFORMATION_CLASS>(64);
constexpr LONG kBufferTooSmall = static_cast<LONG>(0xC0000004);
constexpr std::size_t kGdiTableInPeb = 0xF8;
constexpr std::size_t kGdiEntries = 65536;

int CountHandles(DWORD processId) {
    std::vector<std::byte> buffer(1 << 20);
    ULONG needed = 0;
    LONG status = 0;
    while ((status = NtQuerySystemInformation(kExtendedHandles, buffer.data(), static_cast<ULONG>(buffer.size()),
                                              &needed)) == kBufferTooSmall)
        buffer.resize(buffer.size() * 2);
    if (status < 0)
        return 0;
    const auto* table = reinterpret_cast<const HandleTable*>(buffer.data());
    int count = 0;
    for (ULONG_PTR i = 0; i < table->count; ++i)
        count += table->entries[i].processId == processId;
    return count;
}

int CountThreads(DWORD processId) {
    const HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0);
    THREADENTRY32 entry = {};
    entry.dwSize = sizeof(entry);
    int count = 0;
    for (BOOL more = Thread32First(snapshot, &entry); more; more = Thread32Next(snapshot, &entry))
        count += entry.th32OwnerProcessID == processId;
    CloseHandle(snapshot);
    return count;
}

int CountGdiObjects(HANDLE process) {
    PROCESS_BASIC_INFORMATION basic = {};
    if (NtQueryInformationProcess(process, ProcessBasicInformation, &basic, sizeof(basic), nullptr) < 0)
        return 0;
    void* table = nullptr;
    std::vector<GdiEntry> entries(kGdiEntries);
    if (!ReadProcessMemory(process, reinterpret_cast<const char*>(basic.PebBaseAddress) + kGdiTableInPeb, &table,
                           sizeof(table), nullptr) ||
        !table || !ReadProcessMemory(process, table, entries.data(), entries.size() * sizeof(GdiEntry), nullptr)) {
        return 0;
    }
    const DWORD processId = GetProcessId(process);
    int count = 0;
    for (const GdiEntry& entry : entries)
        count += entry.type != 0 && (entry.processId == 0 || entry.processId == static_cast<std::uint16_t>(processId));
    return count;
}

}  // namespace

std::string ProcessFootprint::Text() const {
    return std::to_string(residentBytes >> 10) + " KiB resident, " + std::to_string(handles) + " handles, " +
           std::to_string(threads) + " threads, " + std::to_string(gdiObjects) + " GDI objects";
}

ProcessFootprint FootprintOf(HANDLE process, DWORD processId) {
    ProcessFootprint result;
    PROCESS_MEMORY_COUNTERS memory = {};
    if (GetProcessMemoryInfo(process, &memory, sizeof(memory)))
        result.residentBytes = memory.WorkingSetSize;
    result.handles = CountHandles(processId);
    result.threads = CountThreads(processId);
    result.gdiObjects = CountGdiObjects(process);
    return result;
}

}  // namespace e2e
