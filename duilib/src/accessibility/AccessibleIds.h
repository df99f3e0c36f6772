#pragma once
// A list of child ids for clients of IAccessible, as they were when it was made: a client that walks them sees one
// state of the window. Thread: UI thread; COM brings calls there.
#include <windows.h>

#include <oaidl.h>

#include <cstddef>
#include <utility>
#include <vector>

#include "suite/common/ComObject.h"

namespace DuiLib {

class AccessibleIds final : public suite::ComObject<IEnumVARIANT> {
  public:
    // `next`: index of the one that is given next. The caller holds the first reference.
    AccessibleIds(std::vector<long> ids, std::size_t next) : ids_(std::move(ids)), next_(next) {}

    HRESULT STDMETHODCALLTYPE Next(ULONG count, VARIANT* items, ULONG* fetched) override;
    HRESULT STDMETHODCALLTYPE Skip(ULONG count) override;
    HRESULT STDMETHODCALLTYPE Reset() override;
    HRESULT STDMETHODCALLTYPE Clone(IEnumVARIANT** copy) override;

  private:
    ~AccessibleIds() override = default;

    const std::vector<long> ids_;
    std::size_t next_;
};

}  // namespace DuiLib
