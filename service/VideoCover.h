#pragma once
// The picture that stands for a video.
//
// Threads: any that has entered a single-threaded COM apartment. The caller owns the bitmaps (DeleteObject).
#include <windows.h>

#include <string>

// The shell's: its extractor for the file's type, asked directly. Most systems have one for the usual formats; null
// where there is none, or when it fails.
HBITMAP ShellVideoCover(const std::wstring& path);

// The shell's, or else one of the video's own first frames; null when the file shows nothing.
HBITMAP LoadVideoCover(const std::wstring& path);
