#include "preview/ReaderSystem.h"

namespace reader_system {

HRESULT CreateFromMediaSource(IMFMediaSource* source, IMFAttributes* attributes, IMFSourceReader** reader) {
    return MFCreateSourceReaderFromMediaSource(source, attributes, reader);
}

HRESULT CreateFromUrl(const wchar_t* path, IMFSourceReader** reader) {
    return MFCreateSourceReaderFromURL(path, nullptr, reader);
}

}  // namespace reader_system
