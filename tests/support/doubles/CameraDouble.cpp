#include "tests/support/doubles/CameraDouble.h"

#include <mfapi.h>
#include <mferror.h>

#include <chrono>
#include <thread>

#include "preview/CameraSystem.h"
#include "preview/ReaderSystem.h"
#include "tests/support/doubles/CameraState.h"
#include "tests/support/doubles/ReaderDouble.h"
#include "tests/support/doubles/SourceDouble.h"
#include "tests/support/doubles/Violations.h"

namespace doubles {

namespace {

// Whether somebody beside the watcher holds it.
bool IsHeld(IUnknown* object) {
    object->AddRef();
    return object->Release() > 1;
}

}  // namespace

CameraState& CameraState::The() {
    static CameraState state;
    return state;
}

void CameraState::Watch(IUnknown* object, const char* what) {
    object->AddRef();
    const std::scoped_lock lock(mutex);
    watched.push_back({object, what});
}

void Cameras::Begin() {
    CameraState& state = CameraState::The();
    const std::scoped_lock lock(state.mutex);
    state.script = {};
    state.seen = {};
}

void Cameras::End(std::chrono::seconds patience) {
    CameraState& state = CameraState::The();
    const auto deadline = std::chrono::steady_clock::now() + patience;
    const auto isOver = [&] {
        const std::scoped_lock lock(state.mutex);
        for (const CameraState::Watched& each : state.watched) {
            if (IsHeld(each.object)) {
                return false;
            }
        }
        return state.seen.readersAlive == 0 && state.seen.sourcesAlive == 0 && state.readersAnswering == 0;
    };
    while (!isOver() && std::chrono::steady_clock::now() < deadline) {
        Sleep(5);  // readers are released a while after they were dropped
    }
    const std::scoped_lock lock(state.mutex);
    for (const CameraState::Watched& each : state.watched) {
        if (IsHeld(each.object)) {
            Violations::Add(std::string("somebody holds ") + each.what);
        }
        each.object->Release();
    }
    state.watched.clear();
    if (state.seen.readersAlive != 0) {
        Violations::Add("somebody holds a reader");
    }
    if (state.seen.sourcesAlive != 0) {
        Violations::Add("somebody holds a source");
    }
    if (state.readersAnswering != 0) {
        Violations::Add("a callback does not return");
    }
}

void Cameras::Change(const std::function<void(CameraScript&)>& change) {
    CameraState& state = CameraState::The();
    const std::scoped_lock lock(state.mutex);
    change(state.script);
}

CameraScript Cameras::Script() {
    CameraState& state = CameraState::The();
    const std::scoped_lock lock(state.mutex);
    return state.script;
}

CameraSeen Cameras::Seen() {
    CameraState& state = CameraState::The();
    const std::scoped_lock lock(state.mutex);
    return state.seen;
}

}  // namespace doubles

namespace camera_system {

HRESULT EnumDeviceSources(IMFAttributes* attributes, IMFActivate*** devices, UINT32* count) {
    using namespace doubles;
    const CameraScript script = Cameras::Script();
    GUID kind = {};
    if (FAILED(attributes->GetGUID(MF_DEVSOURCE_ATTRIBUTE_SOURCE_TYPE, &kind)) ||
        kind != MF_DEVSOURCE_ATTRIBUTE_SOURCE_TYPE_VIDCAP_GUID) {
        Violations::Add("cameras are asked for as something else");
    }
    CameraState::The().Watch(attributes, "the attributes of the enumeration");
    if (FAILED(script.enumerate)) {
        return script.enumerate;
    }
    auto** array = static_cast<IMFActivate**>(CoTaskMemAlloc(sizeof(IMFActivate*) * (script.links.size() + 1)));
    *count = 0;
    for (const std::wstring& link : script.links) {
        IMFActivate* device = nullptr;
        if (FAILED(MFCreateTransformActivate(&device))) {
            return E_OUTOFMEMORY;
        }
        if (!link.empty()) {
            device->SetString(MF_DEVSOURCE_ATTRIBUTE_SOURCE_TYPE_VIDCAP_SYMBOLIC_LINK, link.c_str());
        }
        CameraState::The().Watch(device, "an activation object");
        array[(*count)++] = device;
    }
    *devices = array;
    return S_OK;
}

HRESULT CreateDeviceSource(IMFActivate* /*device*/, IMFMediaSource** source) {
    using namespace doubles;
    const CameraScript script = Cameras::Script();
    *source = nullptr;
    {
        const std::scoped_lock lock(CameraState::The().mutex);
        ++CameraState::The().seen.activations;
    }
    if (script.withinActivation) {
        script.withinActivation();
    }
    const HRESULT result = Cameras::Script().activate;
    if (SUCCEEDED(result)) {
        *source = new SourceDouble;
    }
    return result;
}

}  // namespace camera_system

namespace reader_system {

// The double's own threads have done with a reader as soon as its callback has returned.
std::chrono::milliseconds ParkTime() {
    return std::chrono::milliseconds(200);
}

HRESULT CreateFromMediaSource(IMFMediaSource* source, IMFAttributes* attributes, IMFSourceReader** reader) {
    using namespace doubles;
    *reader = nullptr;
    const HRESULT result = Cameras::Script().createReader;
    if (FAILED(result)) {
        return result;
    }
    IMFSourceReaderCallback* callback = nullptr;
    if (FAILED(attributes->GetUnknown(MF_SOURCE_READER_ASYNC_CALLBACK, __uuidof(IMFSourceReaderCallback),
                                      reinterpret_cast<void**>(&callback)))) {
        Violations::Add("a reader without a callback");
        return E_INVALIDARG;
    }
    *reader = new ReaderDouble(static_cast<SourceDouble*>(source), callback);
    callback->Release();
    return S_OK;
}

HRESULT CreateFromUrl(const wchar_t* /*path*/, IMFSourceReader** reader) {
    *reader = nullptr;
    doubles::Violations::Add("a file is opened with the camera's double");
    return E_NOTIMPL;
}

}  // namespace reader_system
