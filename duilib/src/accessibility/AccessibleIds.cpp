#include "accessibility/AccessibleIds.h"

#include <algorithm>

#include "accessibility/AccessibleCalls.h"

namespace DuiLib {

HRESULT AccessibleIds::Next(ULONG count, VARIANT* items, ULONG* fetched) {
    if (!items) {
        return E_POINTER;
    }
    ULONG given = 0;
    while (given < count && next_ < ids_.size()) {
        items[given++] = ToVariant(ids_[next_++]);
    }
    if (fetched) {
        *fetched = given;
    }
    return given == count ? S_OK : S_FALSE;
}

HRESULT AccessibleIds::Skip(ULONG count) {
    const std::size_t rest = ids_.size() - next_;
    next_ += std::min<std::size_t>(count, rest);
    return count <= rest ? S_OK : S_FALSE;
}

HRESULT AccessibleIds::Reset() {
    next_ = 0;
    return S_OK;
}

HRESULT AccessibleIds::Clone(IEnumVARIANT** copy) {
    if (!copy) {
        return E_POINTER;
    }
    return Guarded([&] {
        *copy = new AccessibleIds(ids_, next_);
        return S_OK;
    });
}

}  // namespace DuiLib
