#include "tools/democamera/MediaTypes.h"

#include <mfapi.h>
#include <mfidl.h>

#include "suite/common/ComRelease.h"

namespace democamera {

namespace {

// The attribute that carries the mode's place in the list.
constexpr GUID kModeIndex = {0x2b8a6f0e, 0x61c4, 0x4d0b, {0x93, 0x5a, 0x7e, 0x1d, 0xc8, 0x42, 0x0f, 0xb1}};

}  // namespace

const GUID& SubtypeOf(CameraFormat format) {
    switch (format) {
        case CameraFormat::kRgb32:
            return MFVideoFormat_RGB32;
        case CameraFormat::kRgb24:
            return MFVideoFormat_RGB24;
        case CameraFormat::kYuy2:
            return MFVideoFormat_YUY2;
        case CameraFormat::kNv12:
            return MFVideoFormat_NV12;
        case CameraFormat::kMjpg:
            break;
    }
    return MFVideoFormat_MJPG;
}

HRESULT MakeMediaType(const CameraMode& mode, UINT32 index, IMFMediaType** type) {
    HRESULT result = MFCreateMediaType(type);
    if (FAILED(result)) {
        return result;
    }
    IMFMediaType* made = *type;
    made->SetGUID(MF_MT_MAJOR_TYPE, MFMediaType_Video);
    made->SetGUID(MF_MT_SUBTYPE, SubtypeOf(mode.format));
    MFSetAttributeSize(made, MF_MT_FRAME_SIZE, mode.width, mode.height);
    MFSetAttributeRatio(made, MF_MT_FRAME_RATE, mode.framesPerSecond, 1);
    MFSetAttributeRatio(made, MF_MT_PIXEL_ASPECT_RATIO, mode.aspectWidth, mode.aspectHeight);
    made->SetUINT32(MF_MT_INTERLACE_MODE, MFVideoInterlace_Progressive);
    made->SetUINT32(MF_MT_ALL_SAMPLES_INDEPENDENT, TRUE);
    if (mode.format != CameraFormat::kMjpg) {
        made->SetUINT32(MF_MT_FIXED_SIZE_SAMPLES, TRUE);
        made->SetUINT32(MF_MT_SAMPLE_SIZE, FrameBytes(mode));
        if (mode.declareStride) {
            const auto stride = static_cast<INT32>(StrideBytes(mode));
            made->SetUINT32(MF_MT_DEFAULT_STRIDE, static_cast<UINT32>(mode.bottomUp ? -stride : stride));
        }
    }
    result = made->SetUINT32(kModeIndex, index);
    if (FAILED(result)) {
        ComRelease(*type);
    }
    return result;
}

HRESULT ModeOf(IMFMediaType* type, UINT32* index) {
    return type->GetUINT32(kModeIndex, index);
}

}  // namespace democamera
