#include "preview/CameraSystem.h"

namespace camera_system {

HRESULT EnumDeviceSources(IMFAttributes* attributes, IMFActivate*** devices, UINT32* count) {
    return MFEnumDeviceSources(attributes, devices, count);
}

HRESULT CreateDeviceSource(IMFActivate* device, IMFMediaSource** source) {
    return MFCreateDeviceSource(device, source);
}

}  // namespace camera_system
