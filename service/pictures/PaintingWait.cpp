#include "service/pictures/PaintingWait.h"

#include <windows.h>

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <exception>
#include <memory>
#include <optional>
#include <thread>
#include <utility>

#include "suite/common/ComApartment.h"
#include "suite/common/Handle.h"
#include "suite/logger/QxLogger.h"

namespace pictures {

namespace {

constexpr wchar_t kFunction[] = L"RunWhilePainting";
constexpr DWORD kLookAfterMessagesMs = 1000;

std::atomic<int> leftBehind = 0;

bool RunInApartment(const std::function<bool()>& work) {
    const suite::ComApartment apartment(suite::ComApartment::Kind::kSingleThreaded);
    try {
        return work();
    } catch (const std::exception& error) {
        LogLine(LogLevel::kError, kFunction, L"The work ended with an exception: ", error.what());
        return false;
    }
}

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

thread_local WaitWatch* watchOfThread = nullptr;

}  // namespace

WaitWatch::WaitWatch(std::function<void()> tick) : tick_(std::move(tick)) {
    watchOfThread = this;
}

WaitWatch::~WaitWatch() {
    watchOfThread = nullptr;
}

// One wait of the calling thread.
class Wait {
  public:
    Wait(HANDLE done, milliseconds atMost)
        : done_(done), hasEnd_(atMost != kWithoutEnd), end_(Clock::now() + atMost), watch_(watchOfThread) {
        if (watch_ && watch_->nextTick_ == Clock::time_point{}) {
            watch_->nextTick_ = Clock::now() + WaitWatch::kBeforeFirstTick;
        }
    }

    // False when the time is over, or the program ends.
    bool Run() {
        const bool isDone = WaitForWork();
        if (quit_) {
            // For the loop that this one runs in.
            PostQuitMessage(*quit_);
        }
        return isDone;
    }

  private:
    static DWORD Left(Clock::time_point until) {
        const auto left = std::chrono::ceil<milliseconds>(until - Clock::now());
        return static_cast<DWORD>(std::max<std::int64_t>(0, left.count()));
    }

    bool WaitForWork() {
        for (;;) {
            const DWORD rest = hasEnd_ ? Left(end_) : INFINITE;
            if (rest == 0 || (quit_ && hasEnd_)) {
                return WaitForSingleObject(done_, 0) == WAIT_OBJECT_0;
            }
            const DWORD untilTick = watch_ ? Left(watch_->nextTick_) : kLookAfterMessagesMs;
            const DWORD reason =
                MsgWaitForMultipleObjectsEx(1, &done_, std::min(rest, untilTick),
                                            watch_ ? QS_ALLINPUT : QS_PAINT | QS_SENDMESSAGE, MWMO_INPUTAVAILABLE);
            if (reason == WAIT_OBJECT_0) {
                return true;
            }
            if (reason == WAIT_FAILED) {
                // The work may use what lives as long as the call: it has to be waited for all the same.
                return WaitForSingleObject(done_, rest) == WAIT_OBJECT_0;
            }
            if (reason == WAIT_TIMEOUT && !watch_) {
                // The system puts a ghost in the place of a window whose thread does not look at its messages.
                MSG message;
                PeekMessageW(&message, nullptr, 0, 0, PM_NOREMOVE);
            } else if (reason != WAIT_TIMEOUT) {
                TakeMessage();
            }
            if (watch_ && Left(watch_->nextTick_) == 0) {
                watch_->tick_();
                watch_->nextTick_ = Clock::now() + WaitWatch::kBetweenTicks;
            }
        }
    }

    void TakeMessage() {
        MSG message;
        if (!PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE | (watch_ ? 0 : PM_QS_PAINT | PM_QS_SENDMESSAGE))) {
            return;
        }
        if (message.message == WM_QUIT) {
            quit_ = static_cast<int>(message.wParam);
            if (watch_) {
                watch_->isEnding_ = true;
            }
            return;
        }
        if (watch_) {
            TranslateMessage(&message);
        }
        DispatchMessageW(&message);
    }

    const HANDLE done_;
    const bool hasEnd_;
    const Clock::time_point end_;
    WaitWatch* const watch_;  // borrowed; lives longer than the wait
    std::optional<int> quit_;
};

namespace {

// Shared with the thread, which may outlive the wait.
struct Job {
    std::function<bool()> work;
    suite::Handle done{CreateEventW(nullptr, TRUE, FALSE, nullptr)};
    bool result = false;               // the thread's until `done`
    std::atomic<bool> isOver = false;  // of the two that learn of the other's end, the second takes the job back
};

}  // namespace

bool RunWhilePainting(std::function<bool()> work, std::chrono::milliseconds atMost) {
    const auto job = std::make_shared<Job>();
    job->work = std::move(work);
    if (atMost != kWithoutEnd && leftBehind >= kMostLeftBehind) {
        LogLine(LogLevel::kError, kFunction, L"The work is not begun: too much is left from before");
        return false;
    }
    if (!job->done) {
        return RunInApartment(job->work);
    }
    try {
        std::thread worker([job] {
            job->result = RunInApartment(job->work);
            SetEvent(job->done.Get());
            if (job->isOver.exchange(true)) {
                --leftBehind;
            }
        });
        if (!Wait(job->done.Get(), atMost).Run()) {
            if (watchOfThread && watchOfThread->IsEnding()) {
                LogLine(LogLevel::kInfo, kFunction, L"The program ends before the work");
            } else {
                LogLine(LogLevel::kError, kFunction, L"The work takes too long");
            }
            ++leftBehind;
            if (job->isOver.exchange(true)) {
                --leftBehind;
            }
            worker.detach();
            return false;
        }
        worker.join();
        return job->result;
    } catch (const std::exception& error) {
        LogLine(LogLevel::kError, kFunction, L"No thread for the work: ", error.what());
        return false;
    }
}

}  // namespace pictures
