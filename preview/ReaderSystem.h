#pragma once
// The two calls that make a source reader, for an opened camera and for a video file, and how long it lives on.
//
// Why a header of its own: how a reader of the operating system fails, changes its type or hangs depends on drivers and
// decoders. A test links a double in the place of the library reader_system, which calls the operating system. Results
// and ownership are those of the calls that they stand for. Any thread.
#include <windows.h>

#include <mfidl.h>
#include <mfreadwrite.h>

#include <chrono>

namespace reader_system {

// Of a reader's calls: the only stream that anybody reads.
constexpr DWORD kVideoStream = static_cast<DWORD>(MF_SOURCE_READER_FIRST_VIDEO_STREAM);

// MFCreateSourceReaderFromMediaSource.
HRESULT CreateFromMediaSource(IMFMediaSource* source, IMFAttributes* attributes, IMFSourceReader** reader);

// MFCreateSourceReaderFromURL without attributes.
HRESULT CreateFromUrl(const wchar_t* path, IMFSourceReader** reader);

// How long a reader that nobody needs any more is kept: far longer than a callback of it takes to come to its end, once
// it cannot wait for anything any more.
std::chrono::milliseconds ParkTime();

}  // namespace reader_system
