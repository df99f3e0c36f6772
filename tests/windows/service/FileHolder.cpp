#include "tests/windows/service/FileHolder.h"

#include <windows.h>

#include <array>
#include <cstddef>
#include <random>
#include <set>

#include "suite/common/Handle.h"

namespace {

constexpr DWORD kShortestMs = 50;
constexpr DWORD kLongestMs = 300;

}  // namespace

void HoldNewFiles(const std::wstring& folder, const std::wstring& held) {
    const suite::Handle semaphore(OpenSemaphoreW(SEMAPHORE_MODIFY_STATE, FALSE, held.c_str()));
    const suite::Handle watched(CreateFileW(folder.c_str(), FILE_LIST_DIRECTORY,
                                            FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                            OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr));
    std::mt19937 random(4711);
    std::uniform_int_distribution<DWORD> time(kShortestMs, kLongestMs);
    alignas(FILE_NOTIFY_INFORMATION) std::array<std::byte, 16384> changes{};
    DWORD size = 0;
    while (ReadDirectoryChangesW(watched.Get(), changes.data(), static_cast<DWORD>(changes.size()), FALSE,
                                 FILE_NOTIFY_CHANGE_FILE_NAME | FILE_NOTIFY_CHANGE_LAST_WRITE, &size, nullptr,
                                 nullptr)) {
        const auto* change = reinterpret_cast<const FILE_NOTIFY_INFORMATION*>(changes.data());
        // A file whose changes have piled up is held once: nobody looks at it again before the one who waits for it.
        std::set<std::wstring> looked;
        for (DWORD left = size; left > 0;) {
            const std::wstring name(change->FileName, change->FileNameLength / sizeof(wchar_t));
            suite::Handle file;
            if (looked.insert(name).second) {
                file = suite::Handle(CreateFileW((folder + L"\\" + name).c_str(), GENERIC_READ, 0, nullptr,
                                                 OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
            }
            if (file) {
                ReleaseSemaphore(semaphore.Get(), 1, nullptr);
                Sleep(time(random));
            }
            left = change->NextEntryOffset;
            change = reinterpret_cast<const FILE_NOTIFY_INFORMATION*>(reinterpret_cast<const std::byte*>(change) +
                                                                      change->NextEntryOffset);
        }
    }
}
