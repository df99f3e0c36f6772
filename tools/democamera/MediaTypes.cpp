#include "tools/democamera/MediaTypes.h"

#include <mfapi.h>
#include <mfidl.h>

#include "suite/common/ComRelease.h"

namespace democamera {

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

HRESULT MakeMediaType(const CameraMode& mode, IMFMediaType** type) {
    const HRESULT result = MFCreateMediaType(type);
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
    return S_OK;
}

bool IsTypeOf(const CameraMode& mode, IMFMediaType* type) {
    GUID subtype = {};
    UINT32 width = 0;
    UINT32 height = 0;
    UINT32 frames = 0;
    UINT32 seconds = 0;
    return SUCCEEDED(type->GetGUID(MF_MT_SUBTYPE, &subtype)) && IsEqualGUID(subtype, SubtypeOf(mode.format)) &&
           SUCCEEDED(MFGetAttributeSize(type, MF_MT_FRAME_SIZE, &width, &height)) && width == mode.width &&
           height == mode.height && SUCCEEDED(MFGetAttributeRatio(type, MF_MT_FRAME_RATE, &frames, &seconds)) &&
           frames == mode.framesPerSecond * seconds;
}

}  // namespace democamera
