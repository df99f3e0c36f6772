#pragma once
// Memory between two pages that nobody may touch: whoever reads or writes past its end, or far before its start, ends
// with an access violation. Any thread.
#include <windows.h>

#include <cstddef>
#include <cstdint>
#include <new>

namespace doubles {

class GuardedMemory {
  public:
    // The last byte lies right before the second page.
    explicit GuardedMemory(std::size_t size) : size_(size) {
        constexpr std::size_t kPage = 4096;
        const std::size_t middle = (size + kPage - 1) / kPage * kPage;
        base_ = static_cast<std::uint8_t*>(VirtualAlloc(nullptr, middle + 2 * kPage, MEM_RESERVE, PAGE_NOACCESS));
        if (!base_ || (middle != 0 && !VirtualAlloc(base_ + kPage, middle, MEM_COMMIT, PAGE_READWRITE))) {
            throw std::bad_alloc();
        }
        bytes_ = base_ + kPage + middle - size;
    }
    ~GuardedMemory() { VirtualFree(base_, 0, MEM_RELEASE); }
    GuardedMemory(const GuardedMemory&) = delete;
    GuardedMemory& operator=(const GuardedMemory&) = delete;

    std::uint8_t* Bytes() const { return bytes_; }
    std::size_t Size() const { return size_; }

  private:
    const std::size_t size_;
    std::uint8_t* base_ = nullptr;
    std::uint8_t* bytes_ = nullptr;
};

}  // namespace doubles
