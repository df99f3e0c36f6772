#pragma once
// Where dropped source readers wait until they are released.
//
// Closing the preview only clears its reader: a callback that is already on its way must find null. Without a release
// each start of the preview would leak the reader, its source and the preview itself, which the reader holds. But a
// release must wait: the platform's thread still uses the reader for a moment after its callback has returned, and when
// that thread then holds the last reference, some systems lock up for good, for they end the reader's queue from within
// that queue. So a reader is released a while after it was parked, on a thread of the system's pool, outside every
// lock. Any thread.
#include <windows.h>

#include <mfidl.h>
#include <mfreadwrite.h>

namespace preview {

// Takes over the reference; it is released after reader_system::ParkTime().
void ParkReader(IMFSourceReader* reader);

}  // namespace preview
