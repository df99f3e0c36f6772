#pragma once
// The functions of Media Foundation that the program calls, under their names without "MF".
//
// Why: some editions of the system come without Media Foundation until their user adds it, and no start shall wait for
// libraries that only a camera or a video needs. A function is looked up when it is first called; where it or its
// library is missing the call fails like any other, and the log tells the name. Results and ownership are those of the
// system's functions. Any thread.
#include <windows.h>

#include <mfapi.h>
#include <mfidl.h>
#include <mfreadwrite.h>

#include "suite/common/SystemLibrary.h"

namespace media_foundation {

inline constinit suite::SystemLibrary mfplat(L"mfplat.dll");
inline constinit suite::SystemLibrary mf(L"mf.dll");
inline constinit suite::SystemLibrary mfreadwrite(L"mfreadwrite.dll");

inline constinit suite::SystemFunction<decltype(&MFStartup)> Startup(mfplat, "MFStartup");
inline constinit suite::SystemFunction<decltype(&MFShutdown)> Shutdown(mfplat, "MFShutdown");
inline constinit suite::SystemFunction<decltype(&MFCreateAttributes)> CreateAttributes(mfplat, "MFCreateAttributes");
inline constinit suite::SystemFunction<decltype(&MFCreateMediaType)> CreateMediaType(mfplat, "MFCreateMediaType");
inline constinit suite::SystemFunction<decltype(&MFCopyImage)> CopyImage(mfplat, "MFCopyImage");
inline constinit suite::SystemFunction<decltype(&MFGetStrideForBitmapInfoHeader)> GetStrideForBitmapInfoHeader(
    mfplat, "MFGetStrideForBitmapInfoHeader");
inline constinit suite::SystemFunction<decltype(&MFEnumDeviceSources)> EnumDeviceSources(mf, "MFEnumDeviceSources");
inline constinit suite::SystemFunction<decltype(&MFCreateDeviceSource)> CreateDeviceSource(mf, "MFCreateDeviceSource");
inline constinit suite::SystemFunction<decltype(&MFCreateSourceReaderFromMediaSource)>
    CreateSourceReaderFromMediaSource(mfreadwrite, "MFCreateSourceReaderFromMediaSource");
inline constinit suite::SystemFunction<decltype(&MFCreateSourceReaderFromURL)> CreateSourceReaderFromURL(
    mfreadwrite, "MFCreateSourceReaderFromURL");

// Hands each of them to `visit`, for whoever tells what is missing.
template <typename Visit>
void ForEachFunction(Visit visit) {
    visit(Startup);
    visit(Shutdown);
    visit(CreateAttributes);
    visit(CreateMediaType);
    visit(CopyImage);
    visit(GetStrideForBitmapInfoHeader);
    visit(EnumDeviceSources);
    visit(CreateDeviceSource);
    visit(CreateSourceReaderFromMediaSource);
    visit(CreateSourceReaderFromURL);
}

}  // namespace media_foundation
