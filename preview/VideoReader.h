#pragma once
// Opens a video file and tells the size of its frames; accepts only what the platform can deliver as YUY2.
//
// Each opening starts Media Foundation again and nothing here stops it. The caller has started COM on its thread, and
// uses the object there only. Failures are not logged.
#include <windows.h>

#include <mfidl.h>
#include <mfreadwrite.h>

#include <string>

class VideoReader {
  public:
    VideoReader() = default;
    ~VideoReader();
    VideoReader(const VideoReader&) = delete;
    VideoReader& operator=(const VideoReader&) = delete;

    // Closes what was open before. False: nothing stays open.
    [[nodiscard]] bool Open(const std::wstring& path);
    // False while nothing is open.
    [[nodiscard]] bool GetFrameSize(UINT* widthPx, UINT* heightPx);
    // One of the first frames, not larger than that, as a bitmap that the caller owns: the first that is not dark, for
    // many videos fade in. Null when no frame comes, or nothing is open. Moves on in the video.
    [[nodiscard]] HBITMAP ReadCover(UINT maxWidthPx, UINT maxHeightPx);
    void Close();

  private:
    bool OpenVideoStream(const std::wstring& path);

    IMFSourceReader* reader_ = nullptr;
    IMFMediaType* mediaType_ = nullptr;
};
