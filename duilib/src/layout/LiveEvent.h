#pragma once
// The event that tells screen readers to say an element's name at once. The headers of some compilers lack it.
#include <windows.h>

namespace DuiLib {

inline constexpr DWORD kLiveRegionChanged = 0x8019;  // EVENT_OBJECT_LIVEREGIONCHANGED

}  // namespace DuiLib
