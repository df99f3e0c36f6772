#include "tools/democamera/DemoCameraSystem.h"

#include <mfapi.h>

#include <mutex>

#include "preview/CameraSystem.h"
#include "suite/common/ComObject.h"
#include "suite/common/ComReference.h"

namespace democamera {

namespace {

// The attribute of a listed device that holds its camera, and the object that it holds.
constexpr GUID kCameraAttribute = {0x5d3f5c11, 0x0c2e, 0x4b7a, {0x8e, 0x66, 0x19, 0x8b, 0x2f, 0xd4, 0x73, 0x05}};

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"  // deleted by Release alone
class CameraHolder : public suite::ComObject<IUnknown> {
  public:
    explicit CameraHolder(std::shared_ptr<DemoCamera> camera) : camera_(std::move(camera)) {}
    DemoCamera& Camera() const { return *camera_; }

  private:
    const std::shared_ptr<DemoCamera> camera_;
};
#pragma GCC diagnostic pop

struct Listed {
    std::mutex lock;
    // Guarded by lock.
    std::vector<std::shared_ptr<DemoCamera>> cameras;
    HRESULT result = S_OK;
};

Listed& TheList() {
    static Listed list;
    return list;
}

HRESULT MakeDevice(const std::shared_ptr<DemoCamera>& camera, IMFActivate** device) {
    HRESULT result = MFCreateTransformActivate(device);
    if (FAILED(result)) {
        return result;
    }
    const suite::ComReference<CameraHolder> holder(new CameraHolder(camera));
    result = (*device)->SetUnknown(kCameraAttribute, holder.Get());
    if (SUCCEEDED(result)) {
        result = (*device)->SetGUID(MF_DEVSOURCE_ATTRIBUTE_SOURCE_TYPE, MF_DEVSOURCE_ATTRIBUTE_SOURCE_TYPE_VIDCAP_GUID);
    }
    if (SUCCEEDED(result)) {
        result = (*device)->SetString(MF_DEVSOURCE_ATTRIBUTE_FRIENDLY_NAME, camera->Settings().friendlyName.c_str());
    }
    // A camera without a link is listed too: a device whose link cannot be read.
    if (SUCCEEDED(result) && !camera->Settings().symbolicLink.empty()) {
        result = (*device)->SetString(MF_DEVSOURCE_ATTRIBUTE_SOURCE_TYPE_VIDCAP_SYMBOLIC_LINK,
                                      camera->Settings().symbolicLink.c_str());
    }
    return result;
}

}  // namespace

void SetCameras(std::vector<std::shared_ptr<DemoCamera>> cameras) {
    const std::lock_guard guard(TheList().lock);
    TheList().cameras = std::move(cameras);
}

void SetEnumerationResult(HRESULT result) {
    const std::lock_guard guard(TheList().lock);
    TheList().result = result;
}

}  // namespace democamera

namespace camera_system {

HRESULT EnumDeviceSources(IMFAttributes* attributes, IMFActivate*** devices, UINT32* count) {
    GUID kind = {};
    HRESULT result = attributes->GetGUID(MF_DEVSOURCE_ATTRIBUTE_SOURCE_TYPE, &kind);
    if (FAILED(result)) {
        return result;
    }
    std::vector<std::shared_ptr<democamera::DemoCamera>> listed;
    {
        const std::lock_guard guard(democamera::TheList().lock);
        if (FAILED(democamera::TheList().result)) {
            return democamera::TheList().result;
        }
        if (kind == MF_DEVSOURCE_ATTRIBUTE_SOURCE_TYPE_VIDCAP_GUID) {
            listed = democamera::TheList().cameras;
        }
    }
    std::erase_if(listed, [](const auto& camera) { return !camera->IsPluggedIn(); });
    auto** array = static_cast<IMFActivate**>(CoTaskMemAlloc(sizeof(IMFActivate*) * (listed.size() + 1)));
    if (array == nullptr) {
        return E_OUTOFMEMORY;
    }
    UINT32 made = 0;
    for (const auto& camera : listed) {
        result = democamera::MakeDevice(camera, &array[made]);
        if (FAILED(result)) {
            break;
        }
        ++made;
    }
    if (FAILED(result)) {
        for (UINT32 i = 0; i < made; ++i) {
            ComRelease(array[i]);
        }
        CoTaskMemFree(array);
        return result;
    }
    *devices = array;
    *count = made;
    return S_OK;
}

HRESULT CreateDeviceSource(IMFActivate* device, IMFMediaSource** source) {
    suite::ComReference<IUnknown> holder;
    const HRESULT result = device->GetUnknown(democamera::kCameraAttribute, __uuidof(IUnknown), holder.PutVoid());
    return SUCCEEDED(result) ? static_cast<democamera::CameraHolder*>(holder.Get())->Camera().OpenSource(source)
                             : result;
}

}  // namespace camera_system
