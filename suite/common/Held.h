#pragma once
// Holds one COM interface for the length of a scope. The thread that the interface belongs to.
#include "suite/common/ComRelease.h"

template <typename Interface>
class Held {
  public:
    Held() = default;
    ~Held() { ComRelease(pointer_); }
    Held(const Held&) = delete;
    Held& operator=(const Held&) = delete;
    Interface** Put() { return &pointer_; }
    Interface* Get() const { return pointer_; }
    Interface* operator->() const { return pointer_; }

  private:
    Interface* pointer_ = nullptr;
};
