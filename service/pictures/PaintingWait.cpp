#include "service/pictures/PaintingWait.h"

#include <windows.h>

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <exception>
#include <memory>
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

// False when the time is over.
bool PaintUntil(HANDLE done, std::chrono::milliseconds atMost) {
    const auto end = std::chrono::steady_clock::now() + atMost;
    for (;;) {
        DWORD rest = INFINITE;
        if (atMost != kWithoutEnd) {
            const auto left =
                std::chrono::duration_cast<std::chrono::milliseconds>(end - std::chrono::steady_clock::now());
            rest = static_cast<DWORD>(std::max<std::int64_t>(0, left.count()));
        }
        MSG message;
        const DWORD reason = MsgWaitForMultipleObjectsEx(1, &done, std::min(rest, kLookAfterMessagesMs),
                                                         QS_PAINT | QS_SENDMESSAGE, MWMO_INPUTAVAILABLE);
        if (reason == WAIT_TIMEOUT && rest > kLookAfterMessagesMs) {
            // The system puts a ghost in the place of a window whose thread does not look at its messages.
            PeekMessageW(&message, nullptr, 0, 0, PM_NOREMOVE);
            continue;
        }
        if (reason == WAIT_FAILED) {
            // The work may use what lives as long as the call: it has to be waited for all the same.
            return WaitForSingleObject(done, rest) == WAIT_OBJECT_0;
        }
        if (reason != WAIT_OBJECT_0 + 1) {
            return reason == WAIT_OBJECT_0;
        }
        if (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE | PM_QS_PAINT | PM_QS_SENDMESSAGE)) {
            DispatchMessageW(&message);
        }
    }
}

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
        if (!PaintUntil(job->done.Get(), atMost)) {
            LogLine(LogLevel::kError, kFunction, L"The work takes too long");
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
