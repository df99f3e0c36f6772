#include "preview/ReaderPark.h"

#include <chrono>
#include <deque>
#include <mutex>
#include <vector>

#include "preview/ReaderSystem.h"
#include "suite/common/ComRelease.h"
#include "suite/logger/QxLogger.h"

namespace preview {

namespace {

using Clock = std::chrono::steady_clock;

struct ParkedReader {
    IMFSourceReader* reader;
    Clock::time_point due;
};

class ReaderPark {
  public:
    void Add(IMFSourceReader* reader) {
        const std::lock_guard guard(lock_);
        parked_.push_back({reader, Clock::now() + reader_system::ParkTime()});
        if (timer_ == nullptr) {
            timer_ = CreateThreadpoolTimer(OnTimer, this, nullptr);
        }
        SetTimer();
    }

  private:
    static void CALLBACK OnTimer(PTP_CALLBACK_INSTANCE /*instance*/, void* context, PTP_TIMER /*timer*/) {
        try {
            for (IMFSourceReader* reader : static_cast<ReaderPark*>(context)->TakeDue()) {
                ComRelease(reader);
            }
        } catch (...) {
            LogLine(LogLevel::kError, L"ReaderPark::OnTimer", L"exception while readers are released");
        }
    }

    std::vector<IMFSourceReader*> TakeDue() {
        const std::lock_guard guard(lock_);
        std::vector<IMFSourceReader*> due;
        while (!parked_.empty() && parked_.front().due <= Clock::now()) {
            due.push_back(parked_.front().reader);
            parked_.pop_front();
        }
        SetTimer();
        return due;
    }

    // For the reader that was parked first; with the lock held.
    void SetTimer() {
        if (timer_ == nullptr || parked_.empty()) {
            return;
        }
        constexpr std::chrono::milliseconds kSlack(20);
        const auto wait = std::max(parked_.front().due - Clock::now(), Clock::duration::zero()) + kSlack;
        const auto hundredNs = std::chrono::duration_cast<std::chrono::nanoseconds>(wait).count() / 100;
        ULARGE_INTEGER relative;
        relative.QuadPart = static_cast<ULONGLONG>(-hundredNs);
        FILETIME time = {relative.LowPart, relative.HighPart};
        SetThreadpoolTimer(timer_, &time, 0, 0);
    }

    std::mutex lock_;
    // Guarded by lock_.
    std::deque<ParkedReader> parked_;
    PTP_TIMER timer_ = nullptr;  // runs only while a reader is parked
};

// Never destroyed: the timer may be due while the process ends.
ReaderPark& ThePark() {
    static ReaderPark* const park = new ReaderPark;
    return *park;
}

}  // namespace

void ParkReader(IMFSourceReader* reader) {
    try {
        ThePark().Add(reader);
    } catch (...) {
        LogLine(LogLevel::kError, L"preview::ParkReader", L"no memory to park a reader; it is leaked");
    }
}

}  // namespace preview
