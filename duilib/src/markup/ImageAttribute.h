#pragma once
// The image attribute of layouts and program: which file, which part of it, where, and how it stretches. Pure logic.
//
//   "drawable/a.png"                                  the whole file over the whole control
//   "file='drawable/a.png' source='l,t,r,b' dest='l,t,r,b' corner='l,t,r,b' fade='0..255' reverse='true'"
// source: part of the file, in units; dest: where in the control, in units from its top left; corner: nine-grid
// margins in units that keep their size while the rest stretches; fade: opacity; reverse: mirrored in right-to-left
// languages. Names registered with AddImage stand for files.
#include <optional>
#include <string>
#include <string_view>

#include "DuiLib/Geometry.h"

namespace DuiLib {

struct ImageAttribute {
    std::wstring file;
    std::optional<Rect> sourceDip, destDip;
    Rect cornerDip;
    int fade = 255;
    bool reverse = false;
};

// Nullopt when it names no file or is malformed (an unknown or bad part).
std::optional<ImageAttribute> ParseImageAttribute(std::wstring_view text);

}  // namespace DuiLib
