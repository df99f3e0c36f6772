#include "tests/support/doubles/CameraType.h"

#include <mfapi.h>

#include <cstring>

#include "preview/FormatTable.h"
#include "preview/pixels/SourceExtent.h"
#include "suite/common/ComRelease.h"

namespace doubles {

IMFMediaType* MakeType(const CameraType& type) {
    IMFMediaType* made = nullptr;
    if (FAILED(MFCreateMediaType(&made))) {
        return nullptr;
    }
    made->SetGUID(MF_MT_MAJOR_TYPE, MFMediaType_Video);
    made->SetGUID(MF_MT_SUBTYPE, type.subtype);
    MFSetAttributeSize(made, MF_MT_FRAME_SIZE, type.width, type.height);
    if (type.stride) {
        made->SetUINT32(MF_MT_DEFAULT_STRIDE, static_cast<UINT32>(*type.stride));
    }
    if (type.sampleSize != 0) {
        made->SetUINT32(MF_MT_SAMPLE_SIZE, type.sampleSize);
    }
    if (type.aperture) {
        MFVideoArea area = {};
        area.OffsetX.value = static_cast<SHORT>(type.aperture->left);
        area.OffsetY.value = static_cast<SHORT>(type.aperture->top);
        area.Area = {type.aperture->right - type.aperture->left, type.aperture->bottom - type.aperture->top};
        made->SetBlob(MF_MT_MINIMUM_DISPLAY_APERTURE, reinterpret_cast<const UINT8*>(&area), sizeof area);
    }
    return made;
}

IMFSample* MakeSample(IMFMediaBuffer* buffer, LONGLONG timeHns) {
    IMFSample* sample = nullptr;
    if (SUCCEEDED(MFCreateSample(&sample))) {
        sample->SetSampleTime(timeHns);
        if (buffer) {
            sample->AddBuffer(buffer);
        }
    }
    return sample;
}

IMFSample* MakeSample(const CameraType& type, LONGLONG timeHns) {
    const preview::FormatEntry* format = preview::FindFormat(type.subtype);
    LONG packed = 0;
    if (!format || FAILED(MFGetStrideForBitmapInfoHeader(type.subtype.Data1, type.width, &packed))) {
        return MakeSample(nullptr, timeHns);
    }
    const preview::SourceExtent extent =
        preview::ExtentOf(format->format, type.stride.value_or(packed), type.width, type.height);
    const auto size = static_cast<DWORD>(extent.end - extent.begin);
    IMFMediaBuffer* buffer = nullptr;
    BYTE* data = nullptr;
    if (SUCCEEDED(MFCreateMemoryBuffer(size, &buffer)) && SUCCEEDED(buffer->Lock(&data, nullptr, nullptr))) {
        std::memset(data, 0x80, size);
        buffer->Unlock();
        buffer->SetCurrentLength(size);
    }
    IMFSample* sample = MakeSample(buffer, timeHns);
    ComRelease(buffer);
    return sample;
}

}  // namespace doubles
