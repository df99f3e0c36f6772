#pragma once
// Reads pictures before they are drawn, on threads of the system's pool beside the UI thread.
//
// Why: a window's first picture, another theme and another scale need some thirty files at once, and decoding them is
// most of the time until the window is painted. What is read here is handed to the cache (ImageCache.h) when it asks;
// a picture that no thread has begun by then is read by the asking thread, so nobody waits for a busy pool, only for a
// picture that is being read. Only for files that come with the program: a file of the user's may take for ever.
//
// Threads: the members are called by the UI thread. `jobs_` is its own. What stands in a job belongs to the thread that
// has begun it, until it is done; `next_` and each job's stage are guarded by `lock_`. The destructor returns when no
// thread works for it any more.
#include <windows.h>

#include <condition_variable>
#include <deque>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "paint/PictureRead.h"

namespace DuiLib {

// A picture and the ways in which it is drawn.
struct PictureJob {
    struct Drawn {
        PictureUse use;
        ScaledImage image;  // no pixels: it cannot be drawn so
    };
    Picture picture;
    std::vector<Drawn> drawn;
    HRESULT result = E_PENDING;

    // Once. `result` tells of every failure.
    void Read(PictureDecoder& decoder) noexcept;
};

class PictureReadAhead {
  public:
    PictureReadAhead() = default;
    ~PictureReadAhead();
    PictureReadAhead(const PictureReadAhead&) = delete;
    PictureReadAhead& operator=(const PictureReadAhead&) = delete;

    // A picture to be read by the next Begin; its key names it to the others. One that is there already gets another
    // way of drawing, while it was not begun.
    void Add(const std::wstring& key, const Picture& picture, const PictureUse& use);
    bool Has(const std::wstring& key) const { return jobs_.count(key) != 0; }
    void Begin();
    // Read well, and not taken yet.
    bool IsRead(const std::wstring& key) const;
    // The picture as it was read, now at the latest, by `own` when no other thread has begun it. Null: not there.
    std::shared_ptr<PictureJob> Take(const std::wstring& key, PictureDecoder& own);
    // What was not begun is not read, and what is being read is dropped.
    void Forget();

  private:
    enum class Stage { kListed, kWaiting, kBegun, kDone };
    struct Entry : PictureJob {
        Stage stage = Stage::kListed;
    };
    using Shared = std::shared_ptr<Entry>;

    static void CALLBACK Work(PTP_CALLBACK_INSTANCE, void* self, PTP_WORK);
    void ReadWaiting();
    Shared BeginNext();
    void Finish(Entry& entry);

    mutable std::mutex lock_;
    std::condition_variable done_;
    std::map<std::wstring, Shared> jobs_;
    std::vector<Shared> listed_;
    std::deque<Shared> next_;
    PTP_WORK work_ = nullptr;
};

}  // namespace DuiLib
