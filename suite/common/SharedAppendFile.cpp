#include "suite/common/SharedAppendFile.h"

#include <algorithm>
#include <iterator>
#include <new>

#include "suite/common/LocalFolder.h"
#include "suite/common/MutexLock.h"

namespace suite {

namespace {

constexpr DWORD kLockWaitMs = 500;
// Writers hold it for microseconds; on a busy machine one may have to wait for its turn meanwhile.
constexpr DWORD kSoonMs = 20;
constexpr std::uint64_t kRotationRetryBytes = 64 * 1024;

Handle MakeMutex(const std::wstring& path) {
    Handle mutex(CreateMutexW(nullptr, FALSE, SharedAppendFile::MutexName(path).c_str()));
    // The name may be taken by something that is not ours; then at least the threads of this process keep in line.
    return mutex ? std::move(mutex) : Handle(CreateMutexW(nullptr, FALSE, nullptr));
}

// The size of a file that still has its name; all bits set when it was deleted or the handle is no good.
std::uint64_t LiveSize(HANDLE file) {
    FILE_STANDARD_INFO info{};
    if (!file || !GetFileInformationByHandleEx(file, FileStandardInfo, &info, sizeof info) || info.DeletePending ||
        info.NumberOfLinks == 0) {
        return ~std::uint64_t{0};
    }
    return static_cast<std::uint64_t>(info.EndOfFile.QuadPart);
}

bool Write(HANDLE file, std::string_view text) {
    DWORD written = 0;
    return file && WriteFile(file, text.data(), static_cast<DWORD>(text.size()), &written, nullptr) &&
           written == text.size();
}

}  // namespace

SharedAppendFile::SharedAppendFile(std::wstring path, std::uint64_t limitBytes, int olderFiles)
    : path_(std::move(path)),
      limitBytes_(limitBytes),
      olderFiles_(olderFiles),
      mutex_(MakeMutex(path_)),
      nextRotation_(limitBytes) {}

std::wstring SharedAppendFile::MutexName(const std::wstring& path) {
    std::uint64_t hash = 14695981039346656037u;  // FNV-1a; letters in both cases name the same file
    for (const wchar_t unit : path) {
        const bool upper = unit >= L'A' && unit <= L'Z';
        hash = (hash ^ static_cast<std::uint64_t>(upper ? unit + (L'a' - L'A') : unit)) * 1099511628211u;
    }
    return L"Local\\QxAppend-" + std::to_wstring(hash);
}

bool SharedAppendFile::Open() {
    const MutexLock lock(mutex_.Get(), kSoonMs);
    return lock.IsHeld() ? Reopen() : static_cast<bool>(OpenWithFolders());
}

bool SharedAppendFile::Append(std::string_view line) {
    const MutexLock lock(mutex_.Get(), kLockWaitMs);
    if (!lock.IsHeld()) {
        return Write(OpenWithFolders().Get(), line);
    }
    return EnsureRoom() && Write(file_.Get(), line);
}

bool SharedAppendFile::AppendSoon(std::string_view line) {
    const MutexLock lock(mutex_.Get(), kSoonMs);
    return lock.IsHeld() && EnsureRoom() && Write(file_.Get(), line);
}

void SharedAppendFile::Close() {
    const MutexLock lock(mutex_.Get(), kLockWaitMs);
    if (lock.IsHeld()) {
        file_.Reset();
    }
}

// A file that another process has renamed is full, so its handle is found out by its size alone.
bool SharedAppendFile::EnsureRoom() {
    if (LiveSize(file_.Get()) < limitBytes_) {
        return true;
    }
    if (!Reopen()) {
        return false;
    }
    const std::uint64_t size = LiveSize(file_.Get());
    if (size < limitBytes_) {
        nextRotation_ = limitBytes_;
        return true;
    }
    if (olderFiles_ == 0) {
        return false;
    }
    if (size < nextRotation_) {
        return true;
    }
    if (!Rotate()) {
        nextRotation_ = size + kRotationRetryBytes;
    }
    return Reopen();
}

bool SharedAppendFile::Reopen() {
    file_.Reset();  // first: a deleted file keeps its name until the last handle is closed
    file_ = OpenWithFolders();
    return static_cast<bool>(file_);
}

Handle SharedAppendFile::OpenWithFolders() const {
    Handle file = OpenForAppend();
    if (!file && GetLastError() == ERROR_PATH_NOT_FOUND) {
        try {
            MakeFolders(path_.substr(0, path_.find_last_of(L'\\')));
        } catch (const std::bad_alloc&) {
            return {};
        }
        file = OpenForAppend();
    }
    return file;
}

// True when the path is free again. An older file that somebody holds fast is lost or skipped; that harms nothing.
bool SharedAppendFile::Rotate() {
    try {
        for (int number = olderFiles_; number > 1; --number) {
            MoveFileExW(OlderPath(number - 1).c_str(), OlderPath(number).c_str(), MOVEFILE_REPLACE_EXISTING);
        }
        file_.Reset();
        return MoveFileExW(path_.c_str(), OlderPath(1).c_str(), MOVEFILE_REPLACE_EXISTING) != FALSE;
    } catch (const std::bad_alloc&) {
        return false;
    }
}

Handle SharedAppendFile::OpenForAppend() const {
    constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    return Handle(CreateFileW(path_.c_str(), FILE_APPEND_DATA | FILE_READ_ATTRIBUTES | SYNCHRONIZE, kShareAll, nullptr,
                              OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
}

std::wstring SharedAppendFile::OlderPath(int number) const {
    std::wstring path = path_;
    const std::size_t extension = std::min(path.find_last_of(L'.'), path.size());
    return path.insert(extension, L"." + std::to_wstring(number));
}

}  // namespace suite
