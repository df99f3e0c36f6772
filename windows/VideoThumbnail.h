#pragma once
// Puts the cover of the user's video background among a window's images, where the gallery finds it by its path.
//
// The shell makes the cover: its extractor for the file's type, asked directly. Most systems have one for the usual
// formats; where there is none, nothing is registered.
// Threads: Register runs on a short-lived thread that the UI thread waits for, so it may use the paint manager.
#include <string>

#include "DuiLib/PaintManagerUI.h"

class VideoThumbnail {
  public:
    // Registers the cover of the file under its path, unless it is no video, cannot be read, or is known already.
    void Register(DuiLib::CPaintManagerUI& manager, const std::wstring& path);

    // Whether the path's extension, in exactly this spelling, is that of a video.
    static bool IsVideoPath(const std::wstring& path);

  private:
    std::wstring withoutCover_;  // the last path that the shell made none for: it is not asked again on every paint
};
