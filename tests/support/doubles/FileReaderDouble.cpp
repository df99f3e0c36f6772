#include "tests/support/doubles/FileReaderDouble.h"

#include <mfapi.h>
#include <mferror.h>

#include "preview/ReaderSystem.h"
#include "suite/common/ComObject.h"
#include "suite/common/ComRelease.h"
#include "tests/support/doubles/BufferDouble.h"
#include "tests/support/doubles/Violations.h"

namespace doubles {

FileScript& Files::Script() {
    static FileScript script;
    return script;
}

int& Files::Reads() {
    static int reads = 0;
    return reads;
}

namespace {

int readersAlive = 0;
std::vector<IMFMediaType*> typesSeen;

void Watch(IMFMediaType* type) {
    type->AddRef();
    typesSeen.push_back(type);
}

HRESULT Unused(const char* call) {
    Violations::Add(std::string("IMFSourceReader::") + call + " is not for a cover");
    return E_NOTIMPL;
}

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"  // deleted by Release alone
class FileReaderDouble final : public suite::ComObject<IMFSourceReader> {
  public:
    FileReaderDouble() { ++readersAlive; }
    ~FileReaderDouble() override { --readersAlive; }
    FileReaderDouble(const FileReaderDouble&) = delete;
    FileReaderDouble& operator=(const FileReaderDouble&) = delete;

    STDMETHODIMP GetStreamSelection(DWORD, WINBOOL*) override { return Unused("GetStreamSelection"); }
    STDMETHODIMP SetStreamSelection(DWORD, WINBOOL) override { return Unused("SetStreamSelection"); }
    STDMETHODIMP GetNativeMediaType(DWORD, DWORD, IMFMediaType**) override { return Unused("GetNativeMediaType"); }
    STDMETHODIMP SetCurrentPosition(REFGUID, REFPROPVARIANT) override { return Unused("SetCurrentPosition"); }
    STDMETHODIMP Flush(DWORD) override { return Unused("Flush"); }
    STDMETHODIMP GetServiceForStream(DWORD, REFGUID, REFIID, void**) override { return Unused("GetServiceForStream"); }
    STDMETHODIMP GetPresentationAttribute(DWORD, REFGUID, PROPVARIANT*) override {
        return Unused("GetPresentationAttribute");
    }

    STDMETHODIMP SetCurrentMediaType(DWORD, DWORD*, IMFMediaType* type) override {
        Watch(type);
        GUID subtype = {};
        type->GetGUID(MF_MT_SUBTYPE, &subtype);
        return Files::Script().acceptsYuy2 && subtype == MFVideoFormat_YUY2 ? S_OK : MF_E_INVALIDMEDIATYPE;
    }
    STDMETHODIMP GetCurrentMediaType(DWORD, IMFMediaType** type) override {
        *type = nullptr;
        if (asked_ && FAILED(Files::Script().currentTypeLater)) {
            return Files::Script().currentTypeLater;
        }
        asked_ = true;
        *type = MakeType(current_);
        if (!Files::Script().tellsSize) {
            (*type)->DeleteItem(MF_MT_FRAME_SIZE);
        }
        Watch(*type);
        return S_OK;
    }
    STDMETHODIMP ReadSample(DWORD index, DWORD control, DWORD* stream, DWORD* flags, LONGLONG* time,
                            IMFSample** sample) override {
        if (index != static_cast<DWORD>(MF_SOURCE_READER_FIRST_VIDEO_STREAM) || control != 0) {
            Violations::Add("a read of another stream, or one that empties the decoder");
        }
        const auto& frames = Files::Script().frames;
        const auto number = static_cast<std::size_t>(Files::Reads()++);
        *stream = 0;
        *time = 0;
        *sample = nullptr;
        if (number >= frames.size()) {
            *flags = MF_SOURCE_READERF_ENDOFSTREAM;
            return S_OK;
        }
        const FileFrame& frame = frames[number];
        *flags = frame.flags;
        if (frame.newType) {
            current_ = *frame.newType;
        }
        if (FAILED(frame.result) || frame.bytes.empty()) {
            return frame.result;
        }
        BufferShape shape;
        shape.rowBytes = static_cast<std::uint32_t>(frame.bytes.size());
        shape.rows = 1;
        shape.knowsPlanes = false;
        shape.lock = frame.lock;
        IMFMediaBuffer* buffer = BufferDouble::Make(shape, frame.bytes.data());
        *sample = MakeSample(buffer, 0);
        ComRelease(buffer);
        return S_OK;
    }

  private:
    CameraType current_ = Files::Script().delivers;
    bool asked_ = false;
};
#pragma GCC diagnostic pop

}  // namespace

int Files::Held() {
    int held = readersAlive;
    for (IMFMediaType* type : typesSeen) {
        held += type->Release() != 0 ? 1 : 0;
    }
    typesSeen.clear();
    return held;
}

}  // namespace doubles

namespace reader_system {

HRESULT CreateFromMediaSource(IMFMediaSource* /*source*/, IMFAttributes* /*attributes*/, IMFSourceReader** reader) {
    *reader = nullptr;
    doubles::Violations::Add("a camera is read with the files' double");
    return E_NOTIMPL;
}

HRESULT CreateFromUrl(const wchar_t* /*path*/, IMFSourceReader** reader) {
    doubles::Files::Reads() = 0;
    *reader = new doubles::FileReaderDouble;
    return S_OK;
}

}  // namespace reader_system
