#include "tests/support/doubles/SourceDouble.h"

#include <mferror.h>

#include <utility>

#include "tests/support/doubles/CameraState.h"
#include "tests/support/doubles/Violations.h"

namespace doubles {

namespace {

HRESULT Unused(const char* call) {
    Violations::Add(std::string("IMFMediaSource::") + call + " is the reader's business");
    return E_NOTIMPL;
}

}  // namespace

SourceDouble::SourceDouble() {
    const std::scoped_lock lock(CameraState::The().mutex);
    ++CameraState::The().seen.sources;
    ++CameraState::The().seen.sourcesRunning;
    ++CameraState::The().seen.sourcesAlive;
}

void SourceDouble::WhenShutDown(std::function<void()> then) {
    {
        const std::scoped_lock lock(mutex_);
        if (!shutDown_) {
            whenShutDown_.push_back(std::move(then));
            return;
        }
    }
    then();
}

STDMETHODIMP SourceDouble::QueryInterface(REFIID iid, void** object) {
    *object = iid == __uuidof(IUnknown) || iid == __uuidof(IMFMediaSource) ? this : nullptr;
    if (!*object) {
        return E_NOINTERFACE;
    }
    AddRef();
    return S_OK;
}

STDMETHODIMP_(ULONG) SourceDouble::Release() {
    const ULONG left = --references_;
    if (left == 0) {
        if (!shutDown_) {
            Violations::Add("a source is released and was never shut down");
        }
        {
            const std::scoped_lock lock(CameraState::The().mutex);
            --CameraState::The().seen.sourcesAlive;
        }
        delete this;
    }
    return left;
}

STDMETHODIMP SourceDouble::GetEvent(DWORD /*flags*/, IMFMediaEvent** /*event*/) {
    return Unused("GetEvent");
}

STDMETHODIMP SourceDouble::BeginGetEvent(IMFAsyncCallback* /*callback*/, IUnknown* /*state*/) {
    return Unused("BeginGetEvent");
}

STDMETHODIMP SourceDouble::EndGetEvent(IMFAsyncResult* /*result*/, IMFMediaEvent** /*event*/) {
    return Unused("EndGetEvent");
}

STDMETHODIMP SourceDouble::QueueEvent(MediaEventType /*type*/, REFGUID /*extendedType*/, HRESULT /*status*/,
                                      const PROPVARIANT* /*value*/) {
    return Unused("QueueEvent");
}

STDMETHODIMP SourceDouble::GetCharacteristics(DWORD* /*characteristics*/) {
    return Unused("GetCharacteristics");
}

STDMETHODIMP SourceDouble::CreatePresentationDescriptor(IMFPresentationDescriptor** /*descriptor*/) {
    return Unused("CreatePresentationDescriptor");
}

STDMETHODIMP SourceDouble::Start(IMFPresentationDescriptor* /*descriptor*/, const GUID* /*timeFormat*/,
                                 const PROPVARIANT* /*position*/) {
    return Unused("Start");
}

STDMETHODIMP SourceDouble::Stop() {
    return Unused("Stop");
}

STDMETHODIMP SourceDouble::Pause() {
    return Unused("Pause");
}

STDMETHODIMP SourceDouble::Shutdown() {
    const auto within = Cameras::Script().withinShutdown;
    if (within) {
        within();
    }
    std::vector<std::function<void()>> then;
    {
        const std::scoped_lock lock(mutex_);
        if (shutDown_.exchange(true)) {
            return MF_E_SHUTDOWN;
        }
        then = std::exchange(whenShutDown_, {});
    }
    {
        const std::scoped_lock lock(CameraState::The().mutex);
        --CameraState::The().seen.sourcesRunning;
    }
    for (const auto& each : then) {
        each();
    }
    return S_OK;
}

}  // namespace doubles
