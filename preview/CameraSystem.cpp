#include "preview/CameraSystem.h"

#include "preview/MediaFoundation.h"

namespace camera_system {

HRESULT EnumDeviceSources(IMFAttributes* attributes, IMFActivate*** devices, UINT32* count) {
    return media_foundation::EnumDeviceSources(attributes, devices, count);
}

HRESULT CreateDeviceSource(IMFActivate* device, IMFMediaSource** source) {
    return media_foundation::CreateDeviceSource(device, source);
}

}  // namespace camera_system
