#pragma once
// The bytes that a fuzzer made, read one after the other as numbers; beyond the end every number is 0.
//
// Why: a target that takes numbers must give every input a meaning, and a small change of the input a small change of
// the meaning, or the fuzzer learns nothing. Threads: one.
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>

class Input {
  public:
    Input(const std::uint8_t* data, std::size_t size) : rest_(data, size) {}

    bool Empty() const { return rest_.empty(); }
    std::span<const std::uint8_t> Rest() const { return rest_; }

    // Any number of that type, from as many bytes.
    template <typename Number>
    Number Any() {
        Number number = 0;
        const std::span<const std::uint8_t> bytes = Take(sizeof number);
        if (!bytes.empty()) {
            std::memcpy(&number, bytes.data(), bytes.size());
        }
        return number;
    }

    // From one byte where the range allows it, else from four. REQUIRES: least <= most.
    std::int64_t Within(std::int64_t least, std::int64_t most) {
        const std::uint64_t count = static_cast<std::uint64_t>(most - least) + 1;
        return least + static_cast<std::int64_t>((count <= 256 ? Any<std::uint8_t>() : Any<std::uint32_t>()) % count);
    }

    bool Flag() { return Any<std::uint8_t>() % 2 == 1; }

    // As many as there are, at most.
    std::span<const std::uint8_t> Take(std::size_t count) {
        const auto bytes = rest_.first(count < rest_.size() ? count : rest_.size());
        rest_ = rest_.subspan(bytes.size());
        return bytes;
    }

  private:
    std::span<const std::uint8_t> rest_;
};
