#pragma once
// Finds and decodes picture files through the system's imaging component. Thread: UI thread; the decoder: the one that
// made it.
#include <objbase.h>
#include <windows.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "DuiLib/Geometry.h"
#include "paint/ImageScale.h"
#include "suite/common/ComReference.h"
#include "theme/PictureTheme.h"

struct IWICImagingFactory;

namespace DuiLib {

// The rendition of an image name that serves a DPI and a theme.
struct PicturePath {
    std::wstring file;
    int percent = 100;  // 200: two pixels for a unit
    bool mask = false;
};
// The name of a picture that comes with the program, in a folder that only its installation writes.
bool IsOwnArtwork(const std::wstring& name);
PicturePath FindPicture(const std::wstring& name, int dpi, const PictureTheme& theme);

// Owns the imaging factory, which is made with the first picture.
class PictureDecoder {
  public:
    PictureDecoder();
    ~PictureDecoder();
    PictureDecoder(const PictureDecoder&) = delete;
    PictureDecoder& operator=(const PictureDecoder&) = delete;

    // Calls `use` with the first frame's size and a reader of its rows, valid during the call. The result is `use`'s,
    // or the failure to open the file.
    HRESULT Open(const std::wstring& file, const std::function<HRESULT(Size sizePx, const RowReader& read)>& use);

  private:
    HRESULT MakeFactory();

    suite::ComReference<IWICImagingFactory> factory_;
    CO_MTA_USAGE_COOKIE apartment_ = nullptr;  // keeps COM usable on a thread that has not entered an apartment
};

}  // namespace DuiLib
