#pragma once
// Shows modal windows one after the other, from the message loop and never from within the handler that asks.
//
// Why: two modal windows over one owner would enable it while one of them is still open, and a fault that repeats must
// not pile up boxes: a request whose key waits or is shown already is dropped.
// Threads: Show from any thread; the windows run on the UI thread. Must not be destroyed while a window is shown.
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>

class ModalQueue {
  public:
    ModalQueue();
    // What still waits is dropped.
    ~ModalQueue();
    ModalQueue(const ModalQueue&) = delete;
    ModalQueue& operator=(const ModalQueue&) = delete;

    // `show` makes the window, runs it and returns when it has closed.
    void Show(std::int32_t key, std::function<void()> show);

  private:
    struct State;
    std::shared_ptr<State> state_;  // shared with queued tasks
};
