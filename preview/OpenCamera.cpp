#include "preview/OpenCamera.h"

#include "suite/common/ComRelease.h"

namespace preview {

OpenCamera::~OpenCamera() {
    ShutDown();
    ComRelease(mediaType);
}

void OpenCamera::ShutDown() {
    if (source) {
        source->Shutdown();
        ComRelease(source);
    }
    if (devices) {
        for (UINT32 i = 0; i < deviceCount; ++i) {
            ComRelease(devices[i]);
        }
        CoTaskMemFree(devices);
        devices = nullptr;
    }
    ComRelease(enumerationAttributes);
}

}  // namespace preview
