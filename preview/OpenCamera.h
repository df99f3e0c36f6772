#pragma once
// What belongs to one opening of a camera, from its place in the system's list to the reader's media type.
//
// Shared by the operation that opens and, once the reader is there, by the preview that closes. The objects up to the
// source are set before they are shared; the rest is the opening operation's alone.
#include <windows.h>

#include <mfidl.h>

#include <string>

namespace preview {

class OpenCamera {
  public:
    OpenCamera() = default;
    // Releases what is left. The source was shut down before.
    ~OpenCamera();
    OpenCamera(const OpenCamera&) = delete;
    OpenCamera& operator=(const OpenCamera&) = delete;

    // Shuts the source down, which may take as long as the driver likes, and releases it, the devices and the
    // attributes. Once; no other thread uses them then.
    void ShutDown();

    // --- set before the object is shared
    IMFAttributes* enumerationAttributes = nullptr;
    IMFActivate** devices = nullptr;  // CoTaskMemFree
    UINT32 deviceCount = 0;
    std::wstring link;  // of the chosen one
    IMFMediaSource* source = nullptr;

    // --- the opening operation's
    IMFMediaType* mediaType = nullptr;  // the reader's, after the negotiation
    GUID subtype = {};
    GUID negotiatedSubtype = {};
    UINT32 frameWidthPx = 0;
    UINT32 frameHeightPx = 0;
};

}  // namespace preview
