#pragma once
// The owner of one reference to a COM object. Thread: the one that the interface belongs to.
//
// Members that a described operation holds as raw pointers are given back through ComRelease instead.
#include <utility>

#include "suite/common/ComRelease.h"

namespace suite {

template <typename Interface>
class ComReference {
  public:
    ComReference() = default;
    // Takes the caller's reference over.
    explicit ComReference(Interface* object) : object_(object) {}
    ComReference(ComReference&& other) noexcept : object_(other.Detach()) {}
    ComReference& operator=(ComReference&& other) noexcept {
        if (this != &other) {
            Reset();
            object_ = other.Detach();
        }
        return *this;
    }
    ~ComReference() { Reset(); }

    Interface* Get() const { return object_; }
    Interface* operator->() const { return object_; }
    explicit operator bool() const { return object_ != nullptr; }
    // For calls that write a reference; what was held is released before.
    Interface** Put() {
        Reset();
        return &object_;
    }
    // The same for calls that write it as a void pointer, such as QueryInterface.
    void** PutVoid() { return reinterpret_cast<void**>(Put()); }
    void Reset() { ComRelease(object_); }
    // The caller owns the reference from here on.
    [[nodiscard]] Interface* Detach() { return std::exchange(object_, nullptr); }

  private:
    Interface* object_ = nullptr;
};

}  // namespace suite
