#include "suite/ipc/FrameQueue.h"

#include <algorithm>
#include <cstddef>
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
            const std::vector<std::uint8_t>& frame = frames_.front();
            const std::size_t end = bytes.size();
            bytes.resize(end + frame.size());
            std::copy(frame.begin(), frame.end(), bytes.begin() + static_cast<std::ptrdiff_t>(end));
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
