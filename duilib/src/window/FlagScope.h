#pragma once
// A flag that is set while something is under way, however that ends. Thread: that of the flag.
//
// What it found is put back, so that one may stand within another.

namespace DuiLib {

class FlagScope {
  public:
    explicit FlagScope(bool& flag) : flag_(flag), former_(flag) { flag_ = true; }
    ~FlagScope() { flag_ = former_; }
    FlagScope(const FlagScope&) = delete;
    FlagScope& operator=(const FlagScope&) = delete;

  private:
    bool& flag_;
    const bool former_;
};

}  // namespace DuiLib
