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
    EXPECT_EQ(queue.Pop(0), Bytes({1})) << "at least one, however large";
    EXPECT_EQ(queue.Pop(0), Bytes({2, 2}));
    EXPECT_EQ(queue.Pop(0), Bytes());
}

TEST(FrameQueue, SmallFramesTravelTogether) {
    FrameQueue queue;
    for (const Bytes& frame : {Bytes{1}, Bytes{2, 2}, Bytes{3}, Bytes{4}}) {
        EXPECT_TRUE(queue.Push(frame));
    }
    EXPECT_EQ(queue.Pop(4), Bytes({1, 2, 2, 3}));
    EXPECT_EQ(queue.Pop(4), Bytes({4}));
    EXPECT_TRUE(queue.Empty());
}

TEST(FrameQueue, TakesNoMoreFramesThanItsLimit) {
    FrameQueue queue;
    for (std::size_t i = 0; i < FrameQueue::kMaxFrames; ++i) {
        ASSERT_TRUE(queue.Push({1}));
    }
    EXPECT_FALSE(queue.Push({1}));
    queue.Pop(0);
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

TEST(FrameQueue, WhatWasTakenMakesRoom) {
    FrameQueue queue;
    for (int round = 0; round < 3; ++round) {
        EXPECT_TRUE(queue.Push(Bytes(FrameQueue::kMaxBytes / 2)));
        EXPECT_TRUE(queue.Push(Bytes(FrameQueue::kMaxBytes / 2)));
        EXPECT_FALSE(queue.Push({1}));
        EXPECT_EQ(queue.Pop(FrameQueue::kMaxBytes).size(), FrameQueue::kMaxBytes);
        EXPECT_TRUE(queue.Empty());
    }
}

}  // namespace
