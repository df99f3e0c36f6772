#pragma once
// A folder that the tests empty and fill, moved aside while they run and moved back afterwards.
//
// What tells the state is the name beside it, so that a run that was cut off is made good by the next:
// <folder>.PixoraTests is the folder itself, <folder>.none says that there was none, <folder>.new that its parent was
// not there either. Links below the folder are removed, never followed. Thread: one at a time.
#include <string>

namespace proof {

class KeptFolder {
  public:
    explicit KeptFolder(std::wstring folder) : folder_(std::move(folder)) {}

    // One of the three names is there.
    bool IsKept() const;
    // The parent is there afterwards and the folder is not; false when it may not be moved. REQUIRES: !IsKept()
    [[nodiscard]] bool Keep() const;
    // As it was; false when something stands in the way, and then the kept one stays beside it.
    [[nodiscard]] bool GiveBack() const;

  private:
    std::wstring Moved() const { return folder_ + L".PixoraTests"; }
    std::wstring None() const { return folder_ + L".none"; }
    std::wstring NoParent() const { return folder_ + L".new"; }

    const std::wstring folder_;  // without a backslash at the end
};

}  // namespace proof
