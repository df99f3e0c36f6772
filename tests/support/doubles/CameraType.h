#pragma once
// What the doubles deliver: a video type in plain values, and the media types and samples that are made of it. Any
// thread.
#include <windows.h>

#include <mfobjects.h>

#include <cstdint>
#include <optional>

namespace doubles {

struct CameraType {
    GUID subtype = {};
    std::uint32_t width = 64;
    std::uint32_t height = 48;
    std::optional<LONG> stride;
    std::optional<RECT> aperture;  // MF_MT_MINIMUM_DISPLAY_APERTURE
    std::uint32_t sampleSize = 0;  // MF_MT_SAMPLE_SIZE; 0: none
};
// The caller releases it.
IMFMediaType* MakeType(const CameraType& type);

// A sample with that buffer, which may be null. The caller releases it.
IMFSample* MakeSample(IMFMediaBuffer* buffer, LONGLONG timeHns);
// A sample with one packed buffer of that type, grey. The caller releases it.
IMFSample* MakeSample(const CameraType& type, LONGLONG timeHns);

}  // namespace doubles
