#include "suite/crashdump/DumpWriter.h"

#include <dbghelp.h>

#include <cwchar>
#include <iterator>
#include <memory>

#include "suite/common/MutexLock.h"
#include "suite/common/SystemLibrary.h"
#include "suite/crashdump/DumpFolder.h"
#include "suite/logger/QxLogger.h"

namespace suite {

namespace {

constexpr const wchar_t* kFunction = L"DumpWriter::WaitAndWrite";

constinit SystemLibrary dbghelp(L"dbghelp.dll");
constinit SystemFunction<decltype(&MiniDumpWriteDump)> miniDumpWriteDump(dbghelp, "MiniDumpWriteDump");

// " 0xC0000005 at Pixora.exe+0x1234".
std::wstring Describe(const EXCEPTION_POINTERS& exception) {
    const EXCEPTION_RECORD& record = *exception.ExceptionRecord;
    HMODULE module = nullptr;
    wchar_t path[MAX_PATH] = L"";
    if (GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                           static_cast<LPCWSTR>(record.ExceptionAddress), &module)) {
        GetModuleFileNameW(module, path, MAX_PATH);
    }
    const wchar_t* const lastBackslash = std::wcsrchr(path, L'\\');
    const auto offset = reinterpret_cast<ULONG_PTR>(record.ExceptionAddress) - reinterpret_cast<ULONG_PTR>(module);
    wchar_t text[MAX_PATH + 80];
    std::swprintf(text, std::size(text), L" 0x%08lX at %ls+0x%llX", record.ExceptionCode,
                  lastBackslash ? lastBackslash + 1 : path, static_cast<unsigned long long>(offset));
    return text;
}

}  // namespace

DumpWriter::DumpWriter(std::wstring folder, std::wstring program)
    : folder_(std::move(folder)),
      program_(std::move(program)),
      turn_(CreateMutexW(nullptr, FALSE, nullptr)),
      requested_(CreateEventW(nullptr, FALSE, FALSE, nullptr)),
      done_(CreateEventW(nullptr, FALSE, FALSE, nullptr)) {}

DumpWriter* DumpWriter::Start(std::wstring folder, std::wstring program) {
    std::unique_ptr<DumpWriter> writer(new DumpWriter(std::move(folder), std::move(program)));
    if (!writer->turn_ || !writer->requested_ || !writer->done_) {
        return nullptr;
    }
    const Handle thread(CreateThread(nullptr, 0, &DumpWriter::ThreadEntry, writer.get(), 0, &writer->threadId_));
    return thread ? writer.release() : nullptr;
}

void DumpWriter::WriteOnce(EXCEPTION_POINTERS* exception, const wchar_t* reason) {
    const MutexLock turn(turn_.Get(), kPatienceMs);
    if (!turn.IsHeld() || requestedOnce_) {
        return;
    }
    requestedOnce_ = true;
    exception_ = exception;
    reason_ = reason;
    crashedThreadId_ = GetCurrentThreadId();
    SetEvent(requested_.Get());
    WaitForSingleObject(done_.Get(), kPatienceMs);
}

void DumpWriter::GiveUp() {
    SetEvent(done_.Get());
    for (;;) {
        Sleep(INFINITE);
    }
}

DWORD WINAPI DumpWriter::ThreadEntry(void* writer) {
    static_cast<DumpWriter*>(writer)->WaitAndWrite();
    return 0;
}

void DumpWriter::WaitAndWrite() {
    if (WaitForSingleObject(requested_.Get(), INFINITE) != WAIT_OBJECT_0) {
        return;
    }
    try {
        const std::wstring path = folder_ + L"\\" + DumpFileName(program_);
        // The line comes first: writing the dump takes longer and may fail in a process that is broken. The crash may
        // also have come before the program has opened its log.
        QxLogger::GetInstance()->InitProcessLogger();
        LogLine(LogLevel::kError, kFunction, reason_, Describe(*exception_), L" on thread ", crashedThreadId_,
                L", dump: ", path);
        if (!WriteDump(path)) {
            LogLine(LogLevel::kError, kFunction, L"the crash dump cannot be written: ", GetLastError());
        }
        RemoveOldDumps(folder_, program_);
    } catch (...) {
        // No memory left: the process ends without its line or its dump.
    }
    SetEvent(done_.Get());
}

bool DumpWriter::WriteDump(const std::wstring& path) const {
    if (folder_.empty()) {
        SetLastError(ERROR_PATH_NOT_FOUND);
        return false;
    }
    const auto write = miniDumpWriteDump.Get();
    if (!write) {
        return false;
    }
    Handle file(CreateFileW(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL,
                            nullptr));
    if (!file) {
        return false;
    }
    MINIDUMP_EXCEPTION_INFORMATION information{};
    information.ThreadId = crashedThreadId_;
    information.ExceptionPointers = exception_;
    constexpr auto kContents = static_cast<MINIDUMP_TYPE>(MiniDumpWithIndirectlyReferencedMemory |
                                                          MiniDumpWithThreadInfo | MiniDumpWithUnloadedModules);
    const bool written = write(GetCurrentProcess(), GetCurrentProcessId(), file.Get(), kContents, &information, nullptr,
                               nullptr) != FALSE;
    if (!written) {
        const DWORD error = GetLastError();
        file.Reset();
        DeleteFileW(path.c_str());
        SetLastError(error);
    }
    return written;
}

}  // namespace suite
