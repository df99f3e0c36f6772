#pragma once
// What the owners of handles share: one handle at most, closed once, moved and never copied.
//
// A Kind says what its handle is (Raw), how it is closed (Close), and by Valid which answers of the system stand for
// no handle. Kinds stand one per file: Handle.h, RegistryKey.h, GdiObject.h. Thread: as the handle allows.
#include <utility>

namespace suite {

template <typename Kind>
class Owner {
  public:
    using Raw = typename Kind::Raw;

    Owner() = default;
    // Takes over.
    explicit Owner(Raw handle) : handle_(Kind::Valid(handle)) {}
    Owner(Owner&& other) noexcept : handle_(other.Detach()) {}
    Owner& operator=(Owner&& other) noexcept {
        if (this != &other) {
            Reset();
            handle_ = other.Detach();
        }
        return *this;
    }
    ~Owner() { Reset(); }

    Raw Get() const { return handle_; }
    explicit operator bool() const { return handle_ != nullptr; }
    // For calls that write a handle; what was held is closed before.
    Raw* Put() {
        Reset();
        return &handle_;
    }
    void Reset() {
        if (handle_) {
            Kind::Close(Detach());
        }
    }
    // The caller owns it from here on.
    [[nodiscard]] Raw Detach() { return std::exchange(handle_, nullptr); }

  private:
    Raw handle_ = nullptr;
};

}  // namespace suite
