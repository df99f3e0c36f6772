#include "paint/PictureReadAhead.h"

#include <algorithm>
#include <new>
#include <thread>

namespace DuiLib {
namespace {

// Threads beside the UI thread, which reads too when it comes to paint.
constexpr std::size_t kMaxThreads = 3;

std::size_t ThreadsFor(std::size_t jobs) {
    const std::size_t processors = std::max(2u, std::thread::hardware_concurrency());
    return std::min({jobs, processors - 1, kMaxThreads});
}

}  // namespace

void PictureJob::Read(PictureDecoder& decoder) noexcept {
    try {
        for (Drawn& each : drawn) {
            if (picture.pixels.empty()) {
                result = ReadPicture(decoder, picture, each.use, each.image);
            } else {
                each.image = ScalePicture(picture, each.use);
            }
            if (FAILED(result)) {
                return;
            }
        }
    } catch (const std::bad_alloc&) {
        result = E_OUTOFMEMORY;
    }
}

PictureReadAhead::~PictureReadAhead() {
    Forget();
    if (work_) {
        ::WaitForThreadpoolWorkCallbacks(work_, TRUE);
        ::CloseThreadpoolWork(work_);
    }
}

void PictureReadAhead::Add(const std::wstring& key, const Picture& picture, const PictureUse& use) {
    Shared& entry = jobs_[key];
    if (!entry) {
        entry = std::make_shared<Entry>();
        entry->picture = picture;
        listed_.push_back(entry);
    }
    const std::scoped_lock guard(lock_);
    if (entry->stage == Stage::kListed) {
        entry->drawn.push_back({use, {}});
    }
}

void PictureReadAhead::Begin() {
    if (listed_.empty()) {
        return;
    }
    if (!work_) {
        work_ = ::CreateThreadpoolWork(&Work, this, nullptr);
    }
    const std::size_t threads = work_ ? ThreadsFor(listed_.size()) : 0;
    {
        const std::scoped_lock guard(lock_);
        for (Shared& entry : listed_) {
            entry->stage = Stage::kWaiting;
            next_.push_back(std::move(entry));
        }
    }
    listed_.clear();
    for (std::size_t i = 0; i < threads; ++i) {
        ::SubmitThreadpoolWork(work_);
    }
}

bool PictureReadAhead::IsRead(const std::wstring& key) const {
    const auto job = jobs_.find(key);
    const std::scoped_lock guard(lock_);
    return job != jobs_.end() && job->second->stage == Stage::kDone && SUCCEEDED(job->second->result);
}

std::shared_ptr<PictureJob> PictureReadAhead::Take(const std::wstring& key, PictureDecoder& own) {
    const auto job = jobs_.find(key);
    if (job == jobs_.end()) {
        return nullptr;
    }
    Shared entry = std::move(job->second);
    jobs_.erase(job);
    std::unique_lock guard(lock_);
    if (entry->stage == Stage::kWaiting) {
        next_.erase(std::find(next_.begin(), next_.end(), entry));
        guard.unlock();
        entry->Read(own);
        return entry;
    }
    done_.wait(guard, [&] { return entry->stage == Stage::kDone; });
    return entry;
}

void PictureReadAhead::Forget() {
    jobs_.clear();
    listed_.clear();
    const std::scoped_lock guard(lock_);
    next_.clear();
}

void CALLBACK PictureReadAhead::Work(PTP_CALLBACK_INSTANCE, void* self, PTP_WORK) {
    static_cast<PictureReadAhead*>(self)->ReadWaiting();
}

void PictureReadAhead::ReadWaiting() {
    PictureDecoder decoder;
    while (const Shared entry = BeginNext()) {
        entry->Read(decoder);
        Finish(*entry);
    }
}

PictureReadAhead::Shared PictureReadAhead::BeginNext() {
    const std::scoped_lock guard(lock_);
    if (next_.empty()) {
        return nullptr;
    }
    Shared entry = std::move(next_.front());
    next_.pop_front();
    entry->stage = Stage::kBegun;
    return entry;
}

void PictureReadAhead::Finish(Entry& entry) {
    {
        const std::scoped_lock guard(lock_);
        entry.stage = Stage::kDone;
    }
    done_.notify_all();
}

}  // namespace DuiLib
