#include "tests/e2e/support/ProcessFootprint.h"

#include <psapi.h>
#include <tlhelp32.h>
#include <winternl.h>

#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <iterator>
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
    std::uint8_t type;  // the kind of object in the lower five bits
    std::uint8_t flags;
    std::uint64_t user;
};
constexpr auto kExtendedHandles = static_cast<SYSTEM_INFORMATION_CLASS>(64);
constexpr LONG kBufferTooSmall = static_cast<LONG>(0xC0000004);
constexpr std::size_t kGdiTableInPeb = 0xF8;
constexpr std::size_t kGdiEntries = 65536;
constexpr int kKindBits = 0x1F;
constexpr int kRegion = 4;

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

void CountGdiObjects(HANDLE process, ProcessFootprint& result) {
    PROCESS_BASIC_INFORMATION basic = {};
    if (NtQueryInformationProcess(process, ProcessBasicInformation, &basic, sizeof(basic), nullptr) < 0)
        return;
    void* table = nullptr;
    std::vector<GdiEntry> entries(kGdiEntries);
    if (!ReadProcessMemory(process, reinterpret_cast<const char*>(basic.PebBaseAddress) + kGdiTableInPeb, &table,
                           sizeof(table), nullptr) ||
        !table || !ReadProcessMemory(process, table, entries.data(), entries.size() * sizeof(GdiEntry), nullptr)) {
        return;
    }
    const DWORD processId = GetProcessId(process);
    for (const GdiEntry& entry : entries) {
        if (entry.type != 0 && (entry.processId == 0 || entry.processId == static_cast<std::uint16_t>(processId)))
            ++((entry.type & kKindBits) == kRegion ? result.regions : result.gdiObjects);
    }
}

std::string FileText(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

std::string ProgramPath(HANDLE process) {
    char path[MAX_PATH] = {};
    DWORD length = MAX_PATH;
    return QueryFullProcessImageNameA(process, 0, path, &length) ? std::string(path, length) : std::string();
}

// Under Wine: from the tables of the system below, where a command line begins with the program's path. 0: not there.
double ProcessorMsBelow(const std::string& programPath) {
    constexpr double kMsPerTick = 10;
    constexpr int kFirstField = 14;  // user ticks; kernel ticks follow
    WIN32_FIND_DATAA entry = {};
    const HANDLE search = programPath.empty() ? INVALID_HANDLE_VALUE : FindFirstFileA("Z:\\proc\\*", &entry);
    if (search == INVALID_HANDLE_VALUE)
        return 0;
    double result = 0;
    do {
        const std::string folder = std::string("Z:\\proc\\") + entry.cFileName;
        const std::string command = FileText(folder + "\\cmdline");
        const bool isProcess = entry.cFileName[0] >= '1' && entry.cFileName[0] <= '9';
        if (!isProcess || !command.starts_with(programPath))
            continue;
        // The name in brackets may hold blanks.
        const std::string stat = FileText(folder + "\\stat");
        std::size_t at = stat.rfind(')');
        for (int field = 2; field < kFirstField && at != std::string::npos; ++field)
            at = stat.find(' ', at + 1);
        if (at == std::string::npos)
            continue;
        char* next = nullptr;
        const double user = std::strtod(stat.c_str() + at, &next);
        result = (user + std::strtod(next, nullptr)) * kMsPerTick;
    } while (FindNextFileA(search, &entry));
    FindClose(search);
    return result;
}

}  // namespace

double ProcessorMs(HANDLE process) {
    if (const double below = ProcessorMsBelow(ProgramPath(process)); below > 0)
        return below;
    FILETIME created = {}, ended = {}, kernel = {}, user = {};
    GetProcessTimes(process, &created, &ended, &kernel, &user);
    const auto hns = [](const FILETIME& time) {
        return static_cast<double>(static_cast<ULONGLONG>(time.dwHighDateTime) << 32 | time.dwLowDateTime);
    };
    return (hns(kernel) + hns(user)) / 10'000.0;
}

std::string ProcessFootprint::Text() const {
    return std::to_string(residentBytes >> 10) + " KiB resident, " + std::to_string(handles) + " handles, " +
           std::to_string(threads) + " threads, " + std::to_string(gdiObjects) + " GDI objects, " +
           std::to_string(regions) + " regions";
}

ProcessFootprint FootprintOf(HANDLE process, DWORD processId) {
    ProcessFootprint result;
    PROCESS_MEMORY_COUNTERS memory = {};
    if (GetProcessMemoryInfo(process, &memory, sizeof(memory)))
        result.residentBytes = memory.WorkingSetSize;
    result.handles = CountHandles(processId);
    result.threads = CountThreads(processId);
    CountGdiObjects(process, result);
    return result;
}

}  // namespace e2e
