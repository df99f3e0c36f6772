#pragma once
// Marks elements whose change of name is to be said at once, wherever the user is, for readers that see the window
// through the system's bridge: they ask for a property that an accessible object of this kind cannot have, and that
// only an annotation gives. A system without annotations goes without. Thread: UI thread.
#include <windows.h>

#include <set>

#include <oleacc.h>

#include "suite/common/ComReference.h"

namespace DuiLib {

class LiveAnnotation {
  public:
    // Once for each element is enough; asking again costs nothing.
    void Mark(HWND window, long element);
    // REQUIRES: the window is there still.
    void ClearAll(HWND window);

  private:
    suite::ComReference<IAccPropServices> services_;
    std::set<long> marked_;
};

}  // namespace DuiLib
