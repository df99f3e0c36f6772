#pragma once
// A window's images: decoded once per file and rendition, scaled once per size, kept until removed or until the DPI or
// the theme asks for another file or other colours.
//
// Files are given below the resource folder or as full paths. "drawable/x.png" exists in renditions beside its folder:
// drawable-125, -150, -200, -300 (percent; drawable itself is 100): the smallest that is at least as large as the DPI
// asks for is taken, else the largest there is; a file elsewhere has its pixels as units. A theme has folders of its
// own that are looked into first, and gives masks their colours (PictureTheme.h). Decoding goes through the system's
// imaging component; a picture larger than 8192 × 8192 is refused, and the pixels of large ones are kept only as they
// were scaled. What was scaled and not used for the longest time goes first when there is much of it. What the former
// theme showed in the place of this one's is kept for its coming back, until the scale changes. A file that is missing
// or broken is logged once and draws nothing. Nine-grid images are scaled by parts. The program's own pictures can be
// read ahead on other threads (PictureReadAhead.h). Thread: UI thread. Owns its pixels.
#include <windows.h>

#include <functional>
#include <memory>
#include <string>

#include "DuiLib/Geometry.h"
#include "markup/ImageAttribute.h"
#include "paint/PictureRead.h"

namespace DuiLib {

class ImageCache {
  public:
    ImageCache();
    ~ImageCache();

    void SetDpi(int dpi);   // drops everything that was scaled; registered bitmaps stay
    void OnThemeChanged();  // puts aside what the theme shows another picture for
    // The image as it covers `sizePx`; in a right-to-left window one that asks for it is mirrored, unless it has no
    // direction. Null when it cannot be drawn. Valid until the next call of a member that is not const.
    const ScaledImage* Get(const ImageAttribute& image, Size sizePx, bool rightToLeft);

    // What `draw` asks Get for is read on other threads instead, unless it is known, and Get gives nothing. Only
    // pictures that come with the program.
    void ReadAhead(const std::function<void()>& draw);
    bool IsFresh() const;  // nothing was read ahead since the last change of the scale or the theme

    bool Add(const std::wstring& name, HBITMAP bitmap, Size sizeDip, bool alpha);
    bool Has(const std::wstring& name) const;
    void Remove(const std::wstring& name);  // decoded, scaled and registered; also a remembered failure

  private:
    class Impl;
    std::unique_ptr<Impl> impl_;
};

}  // namespace DuiLib
