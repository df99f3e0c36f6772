#pragma once
// Runs function objects on the UI thread, in the order in which they were handed over.
//
// They run from the message loop, modal loops included, one per message, so that input is not starved. What is still
// waiting when the process ends is dropped. An exception of a task is logged.
#include <windows.h>

#include <functional>
#include <memory>

#include "DuiLib/Export.h"

namespace DuiLib {

class DUILIB_API UIMainQueue {
  public:
    static UIMainQueue* getInstance();

    // Makes the calling thread the UI thread; tasks that were dispatched before now run there. Done by
    // CPaintManagerUI::SetInstance.
    void bindToCurrentThread();
    // Any thread; never waits for the task.
    void dispatch(std::function<void()> task);
    // As dispatch, and the task runs at the earliest after that time (the one timer ends with it).
    void dispatchAfter(unsigned delayMs, std::function<void()> task);

  private:
    UIMainQueue();
    ~UIMainQueue();
    class Impl;
    std::unique_ptr<Impl> impl_;
};

}  // namespace DuiLib
