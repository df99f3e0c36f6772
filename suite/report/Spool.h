#pragma once
// The queue of usage events and the thread that writes them into the spool file.
//
// Why: the caller is the UI thread, and a disk may be slow, full or gone. Put only queues. The thread starts with the
// first message, sleeps while there is none, and lets go of the file whenever the queue is empty, so that the uploader
// may take the file away. It lives until the process ends; what is queued then is written by FlushAtExit on the thread
// that ends the process, because by then the system has stopped every other one and nothing can be joined.
// Threads: Put from any thread; never destroyed. Nothing throws.
#include <windows.h>

#include <atomic>
#include <deque>
#include <string>

#include "suite/common/SharedAppendFile.h"
#include "suite/report/EventLine.h"

namespace suite {

class Spool {
  public:
    // Null when there is no folder to spool to.
    static Spool* Instance();

    // Queues one line; line breaks in it become blanks. False when the queue is full (4096 messages), the message is
    // longer than 8 KiB, or the thread cannot be started.
    bool Put(const std::string& message);

    // Waits until everything that was put is in the file; two seconds at most.
    static void WriteOut();
    // Gives up after about half a second. A message that was being written just then may appear twice.
    // REQUIRES: called from DllMain while the process ends.
    static void FlushAtExit();

  private:
    explicit Spool(const std::wstring& path);
    static Spool* Make();
    static DWORD WINAPI ThreadEntry(void* spool);
    void WriteForever();
    bool EndRound();
    bool StartThread();

    SharedAppendFile file_;
    CONDITION_VARIABLE wake_ = CONDITION_VARIABLE_INIT;
    CONDITION_VARIABLE written_ = CONDITION_VARIABLE_INIT;
    bool toldFailure_ = false;  // writer thread

    SRWLOCK lock_ = SRWLOCK_INIT;
    // Guarded by lock_.
    std::deque<std::string> queue_;
    bool threadStarted_ = false;
    // What the writer thread has taken, and how much of it is written. It takes all that waits at once: a thread that
    // is stopped inside the lock costs what is queued then. Changed by that thread, the messages under lock_.
    std::deque<std::string> taken_;
    std::atomic<std::size_t> done_ = 0;
};

UtcTime UtcNow();

}  // namespace suite
