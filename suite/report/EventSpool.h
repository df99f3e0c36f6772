#pragma once
// The queue of lines and the thread that appends them to the spool file.
//
// Why a thread: the program reports from its user interface, and the disk may be slow, full or locked. The thread
// starts with the first line and sleeps while there is none; the file is open only while lines are written, so that the
// uploader may rename, empty or delete it.
// The end of the process: the system ends the thread first, wherever it is, and calls the library's entry point then.
// FinishAtProcessEnd writes what is left on the thread that ends the process; it waits for nothing but, briefly, for
// another process that writes into the same file. A line may come out twice then, never half. Once the thread runs, the
// library stays loaded until the process ends.
// Threads: Post from any thread. Nothing throws.
#include <windows.h>

#include <deque>
#include <string>

#include "suite/common/SharedAppendFile.h"

namespace suite {

class EventSpool {
  public:
    // The process-wide spool; null when there is no folder to write to. Lives until the process is gone.
    static EventSpool* Instance();
    // For the library's entry point, when the process ends.
    static void FinishAtProcessEnd();

    // Takes a line without its line break. False when the queue is full or the thread cannot start.
    bool Post(std::string line);

  private:
    explicit EventSpool(const std::wstring& folder);

    bool StartWriter();
    static DWORD WINAPI WriterThread(void* spool);
    void WriteForEver();
    void Write(const std::string& line);

    SharedAppendFile file_;  // locks itself

    SRWLOCK lock_ = SRWLOCK_INIT;
    CONDITION_VARIABLE filled_ = CONDITION_VARIABLE_INIT;
    // Guarded by lock_.
    bool started_ = false;
    std::deque<std::string> lines_;  // the front one stays until it is written

    // Writer thread.
    bool toldLoss_ = false;
};

}  // namespace suite
