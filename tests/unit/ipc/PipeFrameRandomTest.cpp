// The decoder under random bytes, random damage and random splits, with fixed seeds. The sanitizers judge memory; the
// checks judge that damage never changes what came before it, and that splits change nothing.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "suite/ipc/PipeFrame.h"

namespace {

using PipeFrame::Decoder;
using PipeFrame::Frame;
using Bytes = std::vector<std::uint8_t>;

class PipeFrameRandom : public testing::Test {
  protected:
    std::size_t Below(std::size_t bound) { return std::uniform_int_distribution<std::size_t>(0, bound - 1)(engine_); }
    std::uint8_t Byte() { return static_cast<std::uint8_t>(Below(256)); }

    Bytes RandomFrame() {
        if (Below(4) == 0) {
            return PipeFrame::EncodeHello(static_cast<std::int32_t>(engine_()));
        }
        Bytes payload(Below(8) == 0 ? Below(5000) : Below(40));
        for (auto& byte : payload) {
            byte = Byte();
        }
        TagIPCMessageItem item;
        for (auto& slot : item.slot) {
            slot = static_cast<std::int32_t>(engine_());
        }
        item.slot[6] = static_cast<std::int32_t>(payload.size());
        item.data = payload.data();
        item.text.assign(Below(20), 't');
        item.flag = Byte();
        item.reserved = static_cast<std::int32_t>(engine_());
        return *PipeFrame::EncodeMessage(item);
    }

    std::vector<Frame> DecodeInPortions(Decoder& decoder, const Bytes& stream) {
        std::vector<Frame> frames;
        for (std::size_t at = 0; at < stream.size();) {
            const std::size_t portion = std::min(stream.size() - at, Below(6) == 0 ? Below(3000) : Below(30));
            decoder.Feed(std::span(stream).subspan(at, portion));
            at += portion;
            while (auto frame = decoder.Next()) {
                frames.push_back(*frame);
            }
        }
        return frames;
    }

    std::mt19937 engine_{20261121};
};

TEST_F(PipeFrameRandom, SplitsChangeNothing) {
    for (int round = 0; round < 200; ++round) {
        Bytes stream;
        std::vector<Bytes> sent(1 + Below(8));
        for (auto& bytes : sent) {
            bytes = RandomFrame();
            stream.insert(stream.end(), bytes.begin(), bytes.end());
        }
        Decoder decoder;
        const std::vector<Frame> frames = DecodeInPortions(decoder, stream);
        ASSERT_EQ(frames.size(), sent.size());
        for (std::size_t i = 0; i < sent.size(); ++i) {
            const Bytes again = frames[i].kind == PipeFrame::Kind::kHello ? PipeFrame::EncodeHello(frames[i].clientId)
                                                                          : *PipeFrame::EncodeMessage(frames[i].Item());
            ASSERT_EQ(again, sent[i]);
        }
        EXPECT_FALSE(decoder.HasPartial());
    }
}

TEST_F(PipeFrameRandom, DamageLeavesEarlierFramesAlone) {
    for (int round = 0; round < 2000; ++round) {
        Bytes stream;
        std::vector<std::size_t> ends;
        const std::size_t count = 1 + Below(5);
        for (std::size_t i = 0; i < count; ++i) {
            const Bytes bytes = RandomFrame();
            stream.insert(stream.end(), bytes.begin(), bytes.end());
            ends.push_back(stream.size());
        }
        Decoder undamaged;
        const std::vector<Frame> expected = DecodeInPortions(undamaged, stream);

        const std::size_t at = Below(stream.size());
        stream[at] = static_cast<std::uint8_t>(stream[at] ^ (1 + Below(255)));
        Decoder decoder;
        const std::vector<Frame> frames = DecodeInPortions(decoder, stream);
        const auto before = static_cast<std::size_t>(
            std::count_if(ends.begin(), ends.end(), [at](std::size_t end) { return end <= at; }));
        ASSERT_GE(frames.size(), before);
        for (std::size_t i = 0; i < before; ++i) {
            ASSERT_EQ(frames[i], expected[i]);
        }
        ASSERT_NE(frames, expected);
    }
}

TEST_F(PipeFrameRandom, RandomBytesAreNeverAFrame) {
    for (int round = 0; round < 2000; ++round) {
        Bytes stream(1 + Below(300));
        for (auto& byte : stream) {
            byte = Byte();
        }
        stream[0] = static_cast<std::uint8_t>(stream[0] == 'Q' ? 'R' : stream[0]);
        Decoder decoder;
        EXPECT_TRUE(DecodeInPortions(decoder, stream).empty());
        EXPECT_EQ(decoder.refusal(), PipeFrame::Refusal::kBadMagic);
    }
}

TEST_F(PipeFrameRandom, RandomFieldsBehindAGoodStart) {
    const Bytes start{'Q', 'X', 'P', 'F', 1, 0};
    for (int round = 0; round < 5000; ++round) {
        Bytes stream = start;
        stream.push_back(static_cast<std::uint8_t>(1 + Below(2)));
        stream.push_back(0);
        while (stream.size() < 200) {
            stream.push_back(Below(3) == 0 ? Byte() : 0);
        }
        Decoder decoder;
        for (const Frame& frame : DecodeInPortions(decoder, stream)) {
            if (frame.kind == PipeFrame::Kind::kMessage) {
                EXPECT_EQ(frame.payload.size(), static_cast<std::size_t>(frame.slot[6]));
                EXPECT_LE(frame.text.size(), PipeFrame::kMaxText);
            }
        }
    }
}

}  // namespace
