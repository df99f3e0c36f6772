#pragma once
// A source reader over a video file that delivers what a test says, synchronously.
//
// Its buffers end where they say (BufferDouble), and what it hands out is counted. Linked in the place of
// reader_system. It decodes nothing: it is asked for YUY2, and its script says what it delivers then. One file at a
// time, one thread.
#include <windows.h>

#include <mfidl.h>
#include <mfreadwrite.h>

#include <cstdint>
#include <optional>
#include <vector>

#include "tests/support/doubles/CameraType.h"

namespace doubles {

struct FileFrame {
    HRESULT result = S_OK;
    DWORD flags = 0;
    std::optional<CameraType> newType;  // from this read on
    std::vector<std::uint8_t> bytes;    // of the sample's one buffer; empty: no sample
    HRESULT lock = S_OK;                // of that buffer
};

struct FileScript {
    bool acceptsYuy2 = true;
    CameraType delivers;  // once YUY2 is set
    bool tellsSize = true;
    std::vector<FileFrame> frames;
    HRESULT currentTypeLater = S_OK;  // of GetCurrentMediaType after the first one
};

class Files {
  public:
    static FileScript& Script();
    // Reads of the file that was opened last.
    static int& Reads();
    // Readers that somebody holds, and media types that came by them; these are forgotten then.
    static int Held();
};

}  // namespace doubles
