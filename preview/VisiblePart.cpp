#include "preview/VisiblePart.h"

#include <mfapi.h>

namespace preview {

RECT VisiblePart(IMFAttributes* type, LONG width, LONG height) {
    const RECT whole = {0, 0, width, height};
    MFVideoArea area = {};
    UINT32 size = 0;
    if (FAILED(type->GetBlob(MF_MT_MINIMUM_DISPLAY_APERTURE, reinterpret_cast<UINT8*>(&area), sizeof area, &size)) ||
        size != sizeof area) {
        return whole;
    }
    const LONG left = area.OffsetX.value;
    const LONG top = area.OffsetY.value;
    const bool inside = left >= 0 && top >= 0 && area.Area.cx > 0 && area.Area.cy > 0 && area.Area.cx <= width - left &&
                        area.Area.cy <= height - top;
    return inside ? RECT{left, top, left + area.Area.cx, top + area.Area.cy} : whole;
}

}  // namespace preview
