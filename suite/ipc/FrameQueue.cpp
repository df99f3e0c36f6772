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

std::vector<std::uint8_t> FrameQueue::Pop(std::size_t mostBytes) {
    std::vector<std::uint8_t> bytes;
    while (!frames_.empty() && (bytes.empty() || bytes.size() + frames_.front().size() <= mostBytes)) {
        if (bytes.empty()) {
            bytes = std::move(frames_.front());
        } else {
            bytes.insert(bytes.end(), frames_.front().begin(), frames_.front().end());
        }
        frames_.pop_front();
    }
    bytes_ -= bytes.size();
    return bytes;
}

void FrameQueue::Clear() {
    frames_.clear();
    bytes_ = 0;
}

}  // namespace suite
