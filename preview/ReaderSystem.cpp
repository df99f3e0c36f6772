#include "preview/ReaderSystem.h"

#include "preview/MediaFoundation.h"

namespace reader_system {

HRESULT CreateFromMediaSource(IMFMediaSource* source, IMFAttributes* attributes, IMFSourceReader** reader) {
    return media_foundation::CreateSourceReaderFromMediaSource(source, attributes, reader);
}

HRESULT CreateFromUrl(const wchar_t* path, IMFSourceReader** reader) {
    return media_foundation::CreateSourceReaderFromURL(path, nullptr, reader);
}

std::chrono::milliseconds ParkTime() {
    return std::chrono::seconds(2);
}

}  // namespace reader_system
