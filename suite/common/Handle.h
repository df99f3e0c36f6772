#pragma once
// The owner of one kernel handle: closed with CloseHandle, null when there is none. Any thread, as the handle allows.
#include <windows.h>

#include <utility>

namespace suite {

class Handle {
  public:
    Handle() = default;
    // Takes over; INVALID_HANDLE_VALUE counts as none.
    explicit Handle(HANDLE handle) : handle_(handle == INVALID_HANDLE_VALUE ? nullptr : handle) {}
    Handle(Handle&& other) noexcept : handle_(std::exchange(other.handle_, nullptr)) {}
    Handle& operator=(Handle&& other) noexcept {
        std::swap(handle_, other.handle_);
        other.Reset();
        return *this;
    }
    ~Handle() { Reset(); }

    HANDLE Get() const { return handle_; }
    explicit operator bool() const { return handle_ != nullptr; }
    void Reset() {
        if (handle_ != nullptr) {
            CloseHandle(std::exchange(handle_, nullptr));
        }
    }

  private:
    HANDLE handle_ = nullptr;
};

}  // namespace suite
