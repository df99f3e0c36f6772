// The bounds of the queue of frames to write.
#include "suite/ipc/FrameQueue.h"

#include <gtest/gtest.h>

namespace {

using suite::FrameQueue;
using Bytes = std::vector<std::uint8_t>;

TEST(FrameQueue, KeepsTheOrder) {
    FrameQueue queue;
    EXPECT_TRUE(queue.Push({1}));
    EXPECT_TRUE(queue.Push({2, 2}));
    EXPECT_EQ(queue.Pop(), Bytes({1}));
    EXPECT_EQ(queue.Pop(), Bytes({2, 2}));
    EXPECT_EQ(queue.Pop(), Bytes());
}

TEST(FrameQueue, TakesNoMoreFramesThanItsLimit) {
    FrameQueue queue;
    for (std::size_t i = 0; i < FrameQueue::kMaxFrames; ++i) {
        ASSERT_TRUE(queue.Push({1}));
    }
    EXPECT_FALSE(queue.Push({1}));
    queue.Pop();
    EXPECT_TRUE(queue.Push({1}));
    EXPECT_FALSE(queue.Push({1}));
}

TEST(FrameQueue, TakesNoMoreBytesThanItsLimit) {
    FrameQueue queue;
    EXPECT_FALSE(queue.Push(Bytes(FrameQueue::kMaxBytes + 1)));
    EXPECT_TRUE(queue.Push(Bytes(FrameQueue::kMaxBytes - 1)));
    EXPECT_FALSE(queue.Push({1, 2}));
    EXPECT_TRUE(queue.Push({1}));
    EXPECT_FALSE(queue.Push({1}));
    queue.Clear();
    EXPECT_TRUE(queue.Empty());
    EXPECT_TRUE(queue.Push(Bytes(FrameQueue::kMaxBytes)));
}

}  // namespace
