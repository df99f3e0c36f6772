#pragma once
// The encoded frames that wait to be written to the pipe, oldest first, bounded in number and bytes.
//
// Why: a server that reads slowly or not at all must cost neither a wait nor unbounded memory.
// Threads: guarded by the owner.
#include <cstddef>
#include <cstdint>
#include <deque>
#include <vector>

namespace suite {

class FrameQueue {
  public:
    static constexpr std::size_t kMaxFrames = 1024;
    static constexpr std::size_t kMaxBytes = 4 * 1024 * 1024;

    // False when the queue is full; the frame is then dropped.
    [[nodiscard]] bool Push(std::vector<std::uint8_t> frame);
    // The oldest frames, one behind the other: at least one, and more while they are no more than `mostBytes`. Empty
    // when there is none.
    std::vector<std::uint8_t> Pop(std::size_t mostBytes);
    void Clear();
    bool Empty() const { return frames_.empty(); }

  private:
    std::deque<std::vector<std::uint8_t>> frames_;
    std::size_t bytes_ = 0;
};

}  // namespace suite
