#include "preview/CameraThreads.h"

#include <windows.h>

#include <condition_variable>
#include <exception>
#include <memory>
#include <mutex>
#include <utility>

#include "preview/ServedWait.h"
#include "suite/common/ComApartment.h"
#include "suite/common/Handle.h"
#include "suite/logger/QxLogger.h"

namespace preview {

namespace {

// A driver that hangs is not waited for.
constexpr std::chrono::seconds kTurnPatience{5};

// Never destroyed: what hangs may come back while the process ends.
struct Counts {
    std::mutex mutex;
    std::condition_variable changed;
    // Guarded by mutex.
    int opening = 0;  // begun, those that wait for a thread or for their turn included
    int waiting = 0;  // openings that have a thread, and wait there for their turn
    int closing = 0;
    int inside = 0;  // openings whose turn it is
};

Counts& TheCounts() {
    static auto* const counts = new Counts;
    return *counts;
}

void Add(int Counts::*count, int difference) {
    Counts& counts = TheCounts();
    const std::scoped_lock lock(counts.mutex);
    counts.*count += difference;
    counts.changed.notify_all();
}

// An opening's, for its whole length.
class Turn {
  public:
    Turn() {
        Counts& counts = TheCounts();
        std::unique_lock lock(counts.mutex);
        ++counts.waiting;
        counts.changed.wait_for(lock, kTurnPatience, [&] { return counts.inside == 0 && counts.closing == 0; });
        --counts.waiting;
        ++counts.inside;
    }
    ~Turn() { Add(&Counts::inside, -1); }
    Turn(const Turn&) = delete;
    Turn& operator=(const Turn&) = delete;
};

struct Work {
    std::function<void()> run;
    int Counts::*count;
};

void CALLBACK Run(PTP_CALLBACK_INSTANCE instance, void* context) {
    const std::unique_ptr<Work> work(static_cast<Work*>(context));
    CallbackMayRunLong(instance);
    {
        const suite::ComApartment apartment(suite::ComApartment::Kind::kMultiThreaded);
        try {
            work->run();
        } catch (const std::exception& error) {
            LogLine(LogLevel::kError, L"CameraThreads::Run", L"the work ended with an exception: ", error.what());
        }
        work->run = nullptr;  // what it owns goes within the apartment
    }
    Add(work->count, -1);
}

// The count is raised already.
bool Submit(std::unique_ptr<Work> work) {
    if (!TrySubmitThreadpoolCallback(Run, work.get(), nullptr)) {
        LogLine(LogLevel::kError, L"CameraThreads::Submit", L"no thread, error code: ", GetLastError());
        Add(work->count, -1);
        return false;
    }
    (void)work.release();
    return true;
}

}  // namespace

bool BeginOpening(std::function<void()> work) {
    {
        Counts& counts = TheCounts();
        const std::scoped_lock lock(counts.mutex);
        if (counts.opening >= kMostOpenings) {
            LogLine(LogLevel::kError, L"CameraThreads::BeginOpening", L"too many openings of a camera hang");
            return false;
        }
        ++counts.opening;
    }
    const auto open = [work = std::move(work)] {
        const Turn turn;
        work();
    };
    return Submit(std::make_unique<Work>(Work{open, &Counts::opening}));
}

bool CloseCamera(std::shared_ptr<OpenCamera> camera, std::chrono::milliseconds atMost) {
    const auto done = std::make_shared<suite::Handle>(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    const auto close = [camera, done] {
        camera->ShutDown();
        SetEvent(done->Get());
    };
    Add(&Counts::closing, 1);
    if (!Submit(std::make_unique<Work>(Work{close, &Counts::closing}))) {
        camera->ShutDown();  // better here and now than never
        return true;
    }
    return *done && WaitServed(done->Get(), atMost);
}

std::wstring OpeningsUnderWay() {
    Counts& counts = TheCounts();
    const std::scoped_lock lock(counts.mutex);
    return L"openings " + std::to_wstring(counts.opening) + L", waiting for their turn " +
           std::to_wstring(counts.waiting) + L", inside " + std::to_wstring(counts.inside) + L", closings " +
           std::to_wstring(counts.closing);
}

}  // namespace preview
