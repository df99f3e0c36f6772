#pragma once
// Where a dropped source reader waits until it can be released.
//
// Closing the preview only clears its reader: a callback that is already on its way must find null, and a reader must
// not be released under a lock that its callback may want. What was cleared is parked here and released, outside every
// lock, when no callback is under way any more; without that each start of the preview would leak the reader, its
// source and the preview itself, which the reader holds.
// Threads: Enter and Leave on the reader's callback thread, Park and ReleaseParked on the thread that closes.
#include <windows.h>

#include <mfidl.h>
#include <mfreadwrite.h>

#include <atomic>

namespace preview {

class ReaderPark {
  public:
    ReaderPark() = default;
    ~ReaderPark();
    ReaderPark(const ReaderPark&) = delete;
    ReaderPark& operator=(const ReaderPark&) = delete;

    // A callback begins and ends.
    void Enter();
    void Leave();

    // Takes over the reference. REQUIRES: none is parked.
    void Park(IMFSourceReader* reader);
    // Waits for the callbacks that are under way, then releases what is parked. REQUIRES: the caller holds no lock
    // that a callback takes, and is not a callback.
    void ReleaseParked();

  private:
    std::atomic<LONG> callbacks_ = 0;
    IMFSourceReader* parked_ = nullptr;  // the closing thread's
};

}  // namespace preview
