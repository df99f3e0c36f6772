#pragma once
// Writes the minidump of this process and the log line about it, on a thread of its own.
//
// Why a thread of its own: the thread that crashed may have no stack left or hold any lock. The thread is made when the
// handler is registered and sleeps until a crash; nothing of it runs in a sound program. Whoever asks waits for it, but
// never longer than kPatienceMs: a process that is beyond help must still end.
// Threads: WriteOnce from any thread. Nothing throws.
#include <windows.h>

#include <string>

#include "suite/common/Handle.h"

namespace suite {

inline constexpr DWORD kPatienceMs = 60'000;

class DumpWriter {
  public:
    // With an empty folder a crash only gets its log line. Null when the thread cannot be made. The writer lives until
    // the process ends.
    static DumpWriter* Start(std::wstring folder, std::wstring program);

    // Dumps the process as it is, with `exception` as what happened on the calling thread; `reason` must stay readable
    // until the call returns. Only the first call dumps: what follows is an echo of the first crash, or another
    // thread's, which must not end the process before the dump is finished.
    void WriteOnce(EXCEPTION_POINTERS* exception, const wchar_t* reason);

    // The exception happened on the writer's own thread: lets whoever waits go on, and never returns.
    bool IsOwnThread() const { return GetCurrentThreadId() == threadId_; }
    [[noreturn]] void GiveUp();

  private:
    DumpWriter(std::wstring folder, std::wstring program);
    static DWORD WINAPI ThreadEntry(void* writer);
    void WaitAndWrite();
    bool WriteDump(const std::wstring& path) const;

    // Constant after Start.
    const std::wstring folder_;
    const std::wstring program_;
    Handle turn_;       // mutex
    Handle requested_;  // event
    Handle done_;       // event
    DWORD threadId_ = 0;

    // Guarded by turn_.
    bool requestedOnce_ = false;

    // The request; written under turn_ before requested_ is set.
    EXCEPTION_POINTERS* exception_ = nullptr;
    const wchar_t* reason_ = L"";
    DWORD crashedThreadId_ = 0;
};

}  // namespace suite
