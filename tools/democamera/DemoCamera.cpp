#include "tools/democamera/DemoCamera.h"

#include <mferror.h>

#include <thread>

#include "suite/logger/QxLogger.h"
#include "tools/democamera/DemoMediaSource.h"

namespace democamera {

std::shared_ptr<DemoCamera> DemoCamera::Make(CameraSettings settings) {
    return std::shared_ptr<DemoCamera>(new DemoCamera(std::move(settings)));
}

void DemoCamera::SetFaults(const CameraFaults& faults) {
    AcquireSRWLockExclusive(&lock_);
    faults_ = faults;
    ReleaseSRWLockExclusive(&lock_);
}

CameraFaults DemoCamera::Faults() const {
    AcquireSRWLockShared(&lock_);
    const CameraFaults faults = faults_;
    ReleaseSRWLockShared(&lock_);
    return faults.opens >= 0 && seen_.tried > faults.opens ? CameraFaults{} : faults;
}

void DemoCamera::Unplug() {
    pluggedIn_ = false;
}

HRESULT DemoCamera::OpenSource(IMFMediaSource** source) {
    *source = nullptr;
    ++seen_.tried;
    std::this_thread::sleep_for(settings_.openingTime);
    if (!pluggedIn_) {
        return MF_E_VIDEO_RECORDING_DEVICE_INVALIDATED;
    }
    const HRESULT result = Faults().openResult;
    if (FAILED(result)) {
        return result;
    }
    LogLine(3, L"DemoCamera::OpenSource", L"demo camera opened: its pictures are made up");
    return DemoMediaSource::Make(shared_from_this(), source);
}

}  // namespace democamera
