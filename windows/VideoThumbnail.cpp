#include "windows/VideoThumbnail.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <exception>
#include <string_view>
#include <thread>

#include "service/pictures/ShellPicture.h"
#include "suite/common/ComApartment.h"
#include "suite/common/GdiObject.h"
#include "suite/common/Handle.h"
#include "suite/logger/QxLogger.h"

namespace {

constexpr int kWidthDip = 64;
constexpr int kHeightDip = 36;
constexpr std::array<std::wstring_view, 7> kVideoExtensions = {L".mp4", L".avi",  L".mkv", L".mov",
                                                               L".flv", L".rmvb", L".wmv"};

std::atomic<int> threads = 0;

// Shared with everybody: others may write, exchange and delete the file meanwhile.
bool CanBeRead(const std::wstring& path) {
    const suite::Handle file(CreateFileW(path.c_str(), GENERIC_READ,
                                         FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_EXISTING,
                                         FILE_ATTRIBUTE_NORMAL, nullptr));
    return static_cast<bool>(file);
}

// Zero for a file that is not there.
FILETIME TimeOf(const std::wstring& path) {
    WIN32_FILE_ATTRIBUTE_DATA facts{};
    return GetFileAttributesExW(path.c_str(), GetFileExInfoStandard, &facts) ? facts.ftLastWriteTime : FILETIME{};
}

}  // namespace

struct VideoThumbnail::Job {
    enum class Phase { kAwaited, kLeftAlone, kDone };

    std::wstring path;
    HWND window = nullptr;  // painted again when the job was left alone
    bool isAgain = false;   // the path has failed with that time before
    FILETIME timeBefore{};

    std::atomic<Phase> phase = Phase::kAwaited;
    const suite::Handle done{CreateEventW(nullptr, TRUE, FALSE, nullptr)};
    // The thread's until `done`.
    suite::GdiBitmap cover;
    FILETIME time{};

    void Run() {
        const suite::ComApartment apartment(suite::ComApartment::Kind::kSingleThreaded);
        time = TimeOf(path);
        if ((!isAgain || CompareFileTime(&time, &timeBefore) != 0) && CanBeRead(path)) {
            // The extractor's own size: the image is scaled when it is registered.
            cover = pictures::ExtractShellPicture(path);
        }
    }
    void End() {
        const bool wasLeftAlone = phase.exchange(Phase::kDone) == Phase::kLeftAlone;
        SetEvent(done.Get());
        if (wasLeftAlone && cover) {
            InvalidateRect(window, nullptr, FALSE);
        }
    }
};

bool VideoThumbnail::IsVideoPath(const std::wstring& path) {
    const std::size_t dot = path.rfind(L'.');
    if (dot == std::wstring::npos) {
        return false;
    }
    const std::wstring_view extension = std::wstring_view(path).substr(dot);
    return std::find(kVideoExtensions.begin(), kVideoExtensions.end(), extension) != kVideoExtensions.end();
}

bool VideoThumbnail::IsLooking() const {
    return job_ && job_->phase != Job::Phase::kDone;
}

void VideoThumbnail::Register(DuiLib::CPaintManagerUI& manager, const std::wstring& path) {
    if (job_ && job_->path != path) {
        job_.reset();  // its thread goes on alone
    }
    if (job_ && !IsLooking()) {
        Take(manager);
    }
    if (job_ || !IsVideoPath(path) || manager.HasImage(path)) {
        return;
    }
    const bool isAgain = path == failedPath_;
    if ((isAgain && GetTickCount64() - failedTick_ < kLookAgainMs) || !Start(manager, path) || isAgain) {
        return;
    }
    if (WaitForSingleObject(job_->done.Get(), kPaintWaitMs) == WAIT_OBJECT_0) {
        Take(manager);
        return;
    }
    auto awaited = Job::Phase::kAwaited;
    if (!job_->phase.compare_exchange_strong(awaited, Job::Phase::kLeftAlone)) {
        Take(manager);
    }
}

bool VideoThumbnail::Start(DuiLib::CPaintManagerUI& manager, const std::wstring& path) {
    const auto job = std::make_shared<Job>();
    if (!job->done || threads >= kMostThreads) {
        return false;
    }
    job->path = path;
    job->window = manager.GetPaintWindow();
    job->isAgain = path == failedPath_;
    job->timeBefore = failedTime_;
    job->phase = job->isAgain ? Job::Phase::kLeftAlone : Job::Phase::kAwaited;
    ++threads;
    try {
        std::thread([job] {
            try {
                job->Run();
            } catch (const std::exception& error) {
                LogLine(LogLevel::kError, L"VideoThumbnail::Register", L"no thumbnail: ", error.what());
            }
            --threads;
            job->End();
        }).detach();
    } catch (const std::exception&) {
        --threads;
        throw;
    }
    job_ = job;
    return true;
}

// REQUIRES: the job is done, or about to signal that.
void VideoThumbnail::Take(DuiLib::CPaintManagerUI& manager) {
    WaitForSingleObject(job_->done.Get(), INFINITE);
    const std::shared_ptr<Job> job = std::move(job_);
    if (job->cover && manager.AddImage(job->path, job->cover.Detach(), kWidthDip, kHeightDip, false, false)) {
        return;
    }
    failedPath_ = job->path;
    failedTime_ = job->time;
    failedTick_ = GetTickCount64();
}
