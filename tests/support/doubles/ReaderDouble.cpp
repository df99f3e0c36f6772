#include "tests/support/doubles/ReaderDouble.h"

#include <mfapi.h>
#include <mferror.h>

#include <chrono>
#include <thread>
#include <utility>

#include "tests/support/doubles/CameraState.h"
#include "tests/support/doubles/Violations.h"

namespace doubles {

namespace {

constexpr std::chrono::milliseconds kBetweenPictures(3);
constexpr LONGLONG kPictureHns = 333'333;

HRESULT Unused(const char* call) {
    Violations::Add(std::string("IMFSourceReader::") + call + " is not for this program");
    return E_NOTIMPL;
}

CameraType Describe(IMFMediaType* type) {
    CameraType described;
    type->GetGUID(MF_MT_SUBTYPE, &described.subtype);
    MFGetAttributeSize(type, MF_MT_FRAME_SIZE, &described.width, &described.height);
    UINT32 stride = 0;
    if (SUCCEEDED(type->GetUINT32(MF_MT_DEFAULT_STRIDE, &stride))) {
        described.stride = static_cast<LONG>(stride);
    }
    described.sampleSize = MFGetAttributeUINT32(type, MF_MT_SAMPLE_SIZE, 0);
    return described;
}

bool IsSame(const CameraType& a, const CameraType& b) {
    return a.subtype == b.subtype && a.width == b.width && a.height == b.height;
}

}  // namespace

ReaderDouble::ReaderDouble(SourceDouble* source, IMFSourceReaderCallback* callback) : source_(source) {
    source->AddRef();
    callback->AddRef();
    core_->callback = callback;
    {
        const std::scoped_lock lock(CameraState::The().mutex);
        core_->current = CameraState::The().script.natives.front();
        ++CameraState::The().seen.readers;
        ++CameraState::The().seen.readersAlive;
        ++CameraState::The().readersAnswering;
    }
    source->WhenShutDown([core = core_] {
        const std::scoped_lock lock(core->mutex);
        core->shutDown = true;
        core->changed.notify_all();
    });
    std::thread([core = core_] { Work(core); }).detach();
}

void ReaderDouble::Work(const std::shared_ptr<Core>& core) {
    LONGLONG timeHns = 7'000'000;
    std::unique_lock lock(core->mutex);
    for (;;) {
        core->changed.wait(lock,
                           [&] { return core->ended || (core->pending && (!core->pending->never || core->shutDown)); });
        if (core->ended) {
            break;
        }
        if (!core->pending->atOnce) {
            core->changed.wait_for(lock, kBetweenPictures, [&] { return core->ended || core->shutDown; });
        }
        if (core->ended) {
            break;
        }
        CameraAnswer answer = *std::exchange(core->pending, std::nullopt);
        if (core->shutDown) {
            if (answer.sample) {
                answer.sample->Release();
            }
            answer = {};
            answer.status = MF_E_SHUTDOWN;
            answer.flags = MF_SOURCE_READERF_ERROR;
        }
        if (answer.newType) {
            core->current = *answer.newType;
        }
        core->failed = core->failed || (answer.flags & MF_SOURCE_READERF_ERROR) != 0;
        core->changed.notify_all();
        IMFSourceReaderCallback* callback = core->callback;
        callback->AddRef();
        lock.unlock();
        Deliver(*core, callback, answer, timeHns += kPictureHns);
        lock.lock();
        core->callbackThread = 0;
    }
    if (core->pending && core->pending->sample) {
        core->pending->sample->Release();
    }
    const std::scoped_lock state(CameraState::The().mutex);
    --CameraState::The().readersAnswering;
}

void ReaderDouble::Deliver(Core& core, IMFSourceReaderCallback* callback, const CameraAnswer& answer,
                           LONGLONG timeHns) {
    std::thread([&] {
        {
            const std::scoped_lock lock(core.mutex);
            core.callbackThread = GetCurrentThreadId();
        }
        const HRESULT result = callback->OnReadSample(answer.status, 0, answer.flags, timeHns, answer.sample);
        if (answer.sample) {
            answer.sample->Release();
        }
        const std::scoped_lock lock(CameraState::The().mutex);
        ++CameraState::The().seen.callbacks;
        CameraState::The().seen.lastCallbackResult = result;
    }).join();
    callback->Release();
}

void ReaderDouble::Check(const char* call, DWORD index) const {
    if (index != static_cast<DWORD>(MF_SOURCE_READER_FIRST_VIDEO_STREAM)) {
        Violations::Add(std::string(call) + " of another stream");
    }
    const std::scoped_lock lock(core_->mutex);
    if (core_->failed && !core_->shutDown) {
        Violations::Add(std::string(call) + " after an error was told");
    }
}

STDMETHODIMP ReaderDouble::QueryInterface(REFIID iid, void** object) {
    *object = iid == __uuidof(IUnknown) || iid == __uuidof(IMFSourceReader) ? this : nullptr;
    if (!*object) {
        return E_NOINTERFACE;
    }
    AddRef();
    return S_OK;
}

STDMETHODIMP_(ULONG) ReaderDouble::Release() {
    const ULONG left = --references_;
    if (left != 0) {
        return left;
    }
    if (!source_->IsShutDown()) {
        source_->Shutdown();
    }
    source_->Release();
    IMFSourceReaderCallback* callback = nullptr;
    {
        const std::scoped_lock lock(core_->mutex);
        if (core_->callbackThread == GetCurrentThreadId()) {
            Violations::Add("the reader's last Release within its callback");
        }
        core_->ended = true;
        callback = std::exchange(core_->callback, nullptr);
        core_->changed.notify_all();
    }
    callback->Release();
    {
        const std::scoped_lock lock(CameraState::The().mutex);
        --CameraState::The().seen.readersAlive;
    }
    delete this;
    return 0;
}

STDMETHODIMP ReaderDouble::GetStreamSelection(DWORD /*index*/, WINBOOL* /*selected*/) {
    return Unused("GetStreamSelection");
}

STDMETHODIMP ReaderDouble::SetStreamSelection(DWORD /*index*/, WINBOOL /*selected*/) {
    return Unused("SetStreamSelection");
}

STDMETHODIMP ReaderDouble::GetNativeMediaType(DWORD index, DWORD typeIndex, IMFMediaType** type) {
    Check("GetNativeMediaType", index);
    *type = nullptr;
    const CameraScript script = Cameras::Script();
    if (typeIndex >= script.natives.size()) {
        return script.noNativeType;
    }
    *type = MakeType(script.natives[typeIndex]);
    CameraState::The().Watch(*type, "a native type");
    return S_OK;
}

STDMETHODIMP ReaderDouble::GetCurrentMediaType(DWORD index, IMFMediaType** type) {
    Check("GetCurrentMediaType", index);
    *type = nullptr;
    const CameraScript script = Cameras::Script();
    const int call = currentTypeCalls_++;
    if (script.currentType && FAILED(script.currentType(call))) {
        return script.currentType(call);
    }
    {
        const std::scoped_lock lock(core_->mutex);
        *type = MakeType(core_->current);
    }
    if (call > 0 && script.currentTypeWithoutSubtype) {
        (*type)->DeleteItem(MF_MT_SUBTYPE);
    }
    if (call > 0 && script.currentTypeWithoutSize) {
        (*type)->DeleteItem(MF_MT_FRAME_SIZE);
    }
    CameraState::The().Watch(*type, "a current type");
    return S_OK;
}

STDMETHODIMP ReaderDouble::SetCurrentMediaType(DWORD index, DWORD* reserved, IMFMediaType* type) {
    Check("SetCurrentMediaType", index);
    const CameraScript script = Cameras::Script();
    const CameraType offered = Describe(type);
    {
        const std::scoped_lock lock(CameraState::The().mutex);
        CameraState::The().seen.offers.push_back(offered);
    }
    const std::scoped_lock lock(core_->mutex);
    if (reserved || core_->pending) {
        Violations::Add("SetCurrentMediaType while a read is outstanding");
        return MF_E_INVALIDREQUEST;
    }
    if (script.accept) {
        if (const auto delivered = script.accept(offered)) {
            core_->current = *delivered;
            return S_OK;
        }
        return script.refusal;
    }
    for (const CameraType& native : script.natives) {
        if (IsSame(native, offered)) {
            core_->current = native;
            return S_OK;
        }
    }
    return script.refusal;
}

STDMETHODIMP ReaderDouble::SetCurrentPosition(REFGUID /*format*/, REFPROPVARIANT /*position*/) {
    return Unused("SetCurrentPosition");
}

STDMETHODIMP ReaderDouble::ReadSample(DWORD index, DWORD flags, DWORD* actualIndex, DWORD* sampleFlags,
                                      LONGLONG* timestamp, IMFSample** sample) {
    Check("ReadSample", index);
    if (flags != 0 || actualIndex || sampleFlags || timestamp || sample) {
        Violations::Add("an asynchronous read with results");
    }
    const CameraScript script = Cameras::Script();
    if (script.withinRead) {
        script.withinRead();
    }
    int number = 0;
    {
        const std::scoped_lock lock(CameraState::The().mutex);
        number = CameraState::The().seen.reads++;
    }
    CameraAnswer answer;
    if (script.answer) {
        answer = script.answer(number);
    } else {
        const std::scoped_lock lock(core_->mutex);
        answer.sample = MakeSample(core_->current, 0);
    }
    std::unique_lock lock(core_->mutex);
    if (core_->shutDown || FAILED(answer.readResult)) {
        if (answer.sample) {
            answer.sample->Release();
        }
        return core_->shutDown ? MF_E_SHUTDOWN : answer.readResult;
    }
    if (core_->pending) {
        Violations::Add("a second read while one is outstanding");
        return MF_E_NOTACCEPTING;
    }
    if (answer.sample) {
        CameraState::The().Watch(answer.sample, "a sample");
    }
    core_->pending = answer;
    core_->changed.notify_all();
    if (answer.atOnce && core_->callbackThread == 0) {
        // A reader may answer before the call that asked it comes back.
        core_->changed.wait(lock, [this] { return !core_->pending || core_->ended; });
    }
    return S_OK;
}

STDMETHODIMP ReaderDouble::Flush(DWORD /*index*/) {
    return Unused("Flush");
}

STDMETHODIMP ReaderDouble::GetServiceForStream(DWORD /*index*/, REFGUID /*service*/, REFIID /*iid*/,
                                               void** /*object*/) {
    return Unused("GetServiceForStream");
}

STDMETHODIMP ReaderDouble::GetPresentationAttribute(DWORD /*index*/, REFGUID /*guid*/, PROPVARIANT* /*value*/) {
    return Unused("GetPresentationAttribute");
}

}  // namespace doubles
