#pragma once
// A font of a layout. Thread: plain values.
#include <windows.h>

#include <string>

namespace DuiLib {

// As its <Font> element gives it.
struct FontSpec {
    std::wstring face;  // empty: the system's message font
    int sizeDip = 14;   // height of the em square
    int weight = FW_NORMAL;
    bool italic = false;
    bool underline = false;
};

}  // namespace DuiLib
