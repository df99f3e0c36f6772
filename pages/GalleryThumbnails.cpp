#include "pages/GalleryThumbnails.h"

#include <cstdint>
#include <deque>
#include <exception>
#include <map>
#include <mutex>
#include <thread>
#include <utility>

#include "DuiLib/ControlUI.h"
#include "DuiLib/UIMainQueue.h"
#include "service/pictures/PictureThumbnail.h"
#include "suite/common/ComApartment.h"
#include "suite/common/GdiObject.h"
#include "suite/logger/QxLogger.h"

namespace {

constexpr int kWidthDip = 52;
constexpr int kHeightDip = 32;
constexpr std::uint32_t kNothing = 0;  // a transparent pixel: the cell's own ground is seen

constexpr wchar_t kFunction[] = L"GalleryThumbnails::Read";

}  // namespace

struct GalleryThumbnails::State : std::enable_shared_from_this<State> {
    struct Job {
        std::wstring path;
        std::wstring control;
        unsigned number = 0;
    };

    explicit State(DuiLib::CPaintManagerUI* paintManager) : manager(paintManager) {}

    void Register(const std::wstring& path, const suite::GdiBitmap& bitmap, bool alpha) const {
        if (bitmap) {
            manager->AddImage(path, bitmap.Get(), kWidthDip, kHeightDip, alpha, true);
        }
    }

    // UI thread. A picture that came too late, for a cell that shows another by now, is dropped.
    void Take(const Job& job, const suite::GdiBitmap& bitmap) {
        const auto shown = latest.find(job.control);
        if (alive && shown != latest.end() && shown->second.number == job.number && bitmap) {
            Register(job.path, bitmap, false);
            if (DuiLib::CControlUI* control = manager->FindControl(job.control)) {
                control->Invalidate();
            }
        }
    }

    // The reading thread.
    void Run() {
        SetThreadPriority(GetCurrentThread(), THREAD_PRIORITY_BELOW_NORMAL);
        const suite::ComApartment apartment(suite::ComApartment::Kind::kMultiThreaded);
        for (;;) {
            Job job;
            {
                const std::scoped_lock lock(mutex);
                if (stopping || jobs.empty()) {
                    running = false;
                    break;
                }
                job = std::move(jobs.front());
                jobs.pop_front();
            }
            try {
                // Shared, because a queued task is copied.
                const auto bitmap = std::make_shared<suite::GdiBitmap>(pictures::LoadPictureThumbnail(job.path));
                DuiLib::UIMainQueue::getInstance()->dispatch(
                    [state = shared_from_this(), job, bitmap] { state->Take(job, *bitmap); });
            } catch (const std::exception& error) {
                LogLine(LogLevel::kError, kFunction, L"No thumbnail: ", error.what());
            }
        }
    }

    // UI thread. Begins once the window has nothing else to do, its first picture above all: timers come last.
    void StartSoon() {
        if (std::exchange(starting, true)) {
            return;
        }
        DuiLib::UIMainQueue::getInstance()->dispatchAfter(USER_TIMER_MINIMUM, [weak = weak_from_this()] {
            const auto state = weak.lock();
            if (state && state->alive) {
                state->starting = false;
                state->Start();
            }
        });
    }

    // UI thread.
    void Start() {
        {
            const std::scoped_lock lock(mutex);
            if (jobs.empty() || std::exchange(running, true)) {
                return;
            }
        }
        // One that has run out of jobs is about to end.
        if (reader.joinable()) {
            reader.join();
        }
        try {
            reader = std::thread([this] { Run(); });
        } catch (const std::exception& error) {
            LogLine(LogLevel::kError, kFunction, L"No thread: ", error.what());
            const std::scoped_lock lock(mutex);
            running = false;
        }
    }

    // UI thread.
    DuiLib::CPaintManagerUI* const manager;  // borrowed; used while alive
    bool alive = true;
    unsigned lastNumber = 0;
    std::map<std::wstring, Job> latest;  // by control
    bool starting = false;               // the reading thread is about to be started
    std::thread reader;

    std::mutex mutex;
    // Guarded by mutex.
    std::deque<Job> jobs;
    bool running = false;
    bool stopping = false;
};

GalleryThumbnails::GalleryThumbnails(DuiLib::CPaintManagerUI* manager) : state_(std::make_shared<State>(manager)) {}

GalleryThumbnails::~GalleryThumbnails() {
    state_->alive = false;
    {
        const std::scoped_lock lock(state_->mutex);
        state_->stopping = true;
    }
    if (state_->reader.joinable()) {
        state_->reader.join();
    }
}

void GalleryThumbnails::Show(const std::wstring& path, const std::wstring& control) {
    const State::Job job{path, control, ++state_->lastNumber};
    state_->latest[control] = job;
    state_->Register(path, suite::GdiBitmap(CreateBitmap(1, 1, 1, 32, &kNothing)), true);
    {
        const std::scoped_lock lock(state_->mutex);
        state_->jobs.push_back(job);
    }
    state_->StartSoon();
}

void GalleryThumbnails::Forget(const std::wstring& control) {
    const auto shown = state_->latest.find(control);
    if (shown == state_->latest.end()) {
        return;
    }
    state_->manager->RemoveImage(shown->second.path);
    state_->latest.erase(shown);
}
