#pragma once
// The picture that stands for a video.
//
// Threads: any; ShellVideoCover needs one in a single-threaded COM apartment. The caller owns the bitmaps
// (DeleteObject).
#include <windows.h>

#include <chrono>
#include <string>

// How long a video may take to be opened and read: some damaged ones keep the system's decoders busy for ever.
inline constexpr std::chrono::seconds kVideoPatience{10};

// The shell's: its extractor for the file's type, asked directly. Most systems have one for the usual formats; null
// where there is none, or when it fails.
HBITMAP ShellVideoCover(const std::wstring& path);

// The shell's, or else one of the video's own first frames; null when the file shows nothing in
// time.
HBITMAP LoadVideoCover(const std::wstring& path);
