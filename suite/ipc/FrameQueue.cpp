#include "suite/ipc/FrameQueue.h"

#include <utility>

namespace suite {

bool FrameQueue::Push(std::vector<std::uint8_t> frame) {
    if (frames_.size() >= kMaxFrames || frame.size() > kMaxBytes - bytes_) {
        return false;
    }
    const std::size_t size = frame.size();
    frames_.push_back(std::move(frame));
    bytes_ += size;
    return true;
}

std::vector<std::uint8_t> FrameQueue::Pop() {
    if (frames_.empty()) {
        return {};
    }
    std::vector<std::uint8_t> frame = std::move(frames_.front());
    frames_.pop_front();
    bytes_ -= frame.size();
    return frame;
}

void FrameQueue::Clear() {
    frames_.clear();
    bytes_ = 0;
}

}  // namespace suite
