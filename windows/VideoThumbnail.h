#pragma once
// Puts the cover of the user's video background among a window's images, where the gallery finds it by its path.
//
// The shell makes the cover: its extractor for the file's type, asked directly. Most systems have one for the usual
// formats; where there is none, nothing is registered. The file may lie on a share that is gone, or its extractor hang:
// a paint waits for a cover for 150 ms at most, and what comes later has the window painted again. A path that brought
// nothing is only looked at again when its file has changed.
// Threads: UI thread. The file is only touched on threads of this class, of which no more than four live at a time;
// they outlive it where they have to.
#include <windows.h>

#include <memory>
#include <string>

#include "DuiLib/PaintManagerUI.h"

class VideoThumbnail {
  public:
    // How long a paint waits.
    static constexpr DWORD kPaintWaitMs = 150;
    // Between two looks at whether a file that brought nothing has changed.
    static constexpr ULONGLONG kLookAgainMs = 5000;
    static constexpr int kMostThreads = 4;

    // Registers the cover of the file under its path, unless it is no video or known already. To be called before each
    // paint; what is not there in time is registered by a later call.
    void Register(DuiLib::CPaintManagerUI& manager, const std::wstring& path);
    // A thread is looking at the file of the last call.
    bool IsLooking() const;

    // Whether the path's extension, in exactly this spelling, is that of a video.
    static bool IsVideoPath(const std::wstring& path);

  private:
    struct Job;

    bool Start(DuiLib::CPaintManagerUI& manager, const std::wstring& path);
    void Take(DuiLib::CPaintManagerUI& manager);

    std::shared_ptr<Job> job_;  // shared with its thread; null when nothing is under way
    // What brought nothing: that path, as long as its file has this time, looked at then.
    std::wstring failedPath_;
    FILETIME failedTime_{};
    ULONGLONG failedTick_ = 0;
};
