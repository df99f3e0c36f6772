#pragma once
// The parts of the user's registry that the tests write, kept while they run and given back afterwards.
//
// The copy lies in the registry too, so that a run that was cut off, by a power failure for one, is made good by the
// next. Whatever was not there before goes, with the keys above it that were not there either. Thread: one at a time.
#include <string>
#include <vector>

namespace proof {

class KeptRegistry {
  public:
    // Below HKEY_CURRENT_USER: one value or, without a name, the key with everything below it.
    struct Place {
        std::wstring key;
        std::wstring value;
    };

    // `copy`: the key for the copy, which nobody else uses.
    explicit KeptRegistry(std::wstring copy) : copy_(std::move(copy)) {}

    // A copy is there, and what it was made of may have been changed since.
    bool IsKept() const;
    // False: nothing may be changed, as it could not be given back. REQUIRES: !IsKept()
    [[nodiscard]] bool Keep(const std::vector<Place>& places) const;
    // As it was, and no copy any more; false when the system refuses some of it, and then the copy stays.
    [[nodiscard]] bool GiveBack() const;

  private:
    const std::wstring copy_;
};

}  // namespace proof
