#pragma once
// Captures that have ended, but whose graphics device is in use still: a device that hangs must not be released by
// another thread than its window's, nor be waited for.
//
// Each is asked for once a second, and whenever its owner wants to know; until it is released its window has to stay.
// What is left at the end of the owner is not released: its thread is still inside the graphics device.
// Thread: UI thread, that of the devices.
#include <memory>
#include <vector>

class Preview;

class BusyCaptures {
  public:
    BusyCaptures();
    ~BusyCaptures();
    BusyCaptures(const BusyCaptures&) = delete;
    BusyCaptures& operator=(const BusyCaptures&) = delete;

    // Takes over the caller's reference of a capture that is closed. False: its device is busy, it is released later.
    bool Release(Preview* capture);
    // Whether none is left.
    bool ReleaseAll();
    bool IsEmpty() const { return captures_.empty(); }

  private:
    void ReleaseLater() const;

    std::vector<Preview*> captures_;             // owned references
    const std::shared_ptr<BusyCaptures*> self_;  // ends with it: queued tasks hold a weak_ptr
};
