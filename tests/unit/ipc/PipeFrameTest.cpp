// The frame format, byte by byte, and everything a decoder must refuse.
#include "suite/ipc/PipeFrame.h"

#include <gmock/gmock.h>

#include <cstring>

namespace {

using PipeFrame::Decoder;
using PipeFrame::Frame;
using PipeFrame::Kind;
using PipeFrame::Refusal;
using Bytes = std::vector<std::uint8_t>;

TagIPCMessageItem Ping() {
    TagIPCMessageItem item;
    item.slot[0] = 0xCD0000;
    item.slot[2] = 0x4B273B;
    item.slot[3] = 0;
    item.slot[6] = 2;
    item.data = "1";
    return item;
}

const Bytes kPingBytes{
    'Q', 'X', 'P',  'F', 1,    0,    2,    0,                          // magic, version, kind
    54,  0,   0,    0,   0,    0,    0,    0,                          // frame length, text length
    0,   0,   0xCD, 0,   0xFF, 0xFF, 0xFF, 0xFF, 0x3B, 0x27, 0x4B, 0,  // slots 0 to 2
    0,   0,   0,    0,   0xFF, 0xFF, 0xFF, 0xFF, 0,    0,    0,    0,  // slots 3 to 5
    2,   0,   0,    0,                                                 // slot 6
    0,   0,   0,    0,   0,    0,    0,    0,                          // reserved, flag, padding
    '1', 0,                                                            // payload
};

TagIPCMessageItem FullItem(const Bytes& payload) {
    TagIPCMessageItem item;
    item.text = std::string("te\0xt", 5);
    for (int i = 0; i < 6; ++i) {
        item.slot[i] = i % 2 == 0 ? i * 1000000 : -i;
    }
    item.slot[6] = static_cast<std::int32_t>(payload.size());
    item.data = payload.data();
    item.flag = 0xA5;
    item.reserved = -2;
    return item;
}

// Decodes all of it at once.
std::vector<Frame> DecodeAll(Decoder& decoder, const Bytes& bytes) {
    decoder.Feed(bytes);
    std::vector<Frame> frames;
    while (auto frame = decoder.Next()) {
        frames.push_back(*frame);
    }
    return frames;
}

Refusal RefusalOf(const Bytes& bytes) {
    Decoder decoder;
    EXPECT_TRUE(DecodeAll(decoder, bytes).empty());
    return decoder.refusal();
}

Bytes With(Bytes bytes, std::size_t at, std::initializer_list<std::uint8_t> replacement) {
    std::copy(replacement.begin(), replacement.end(), bytes.begin() + static_cast<std::ptrdiff_t>(at));
    return bytes;
}

TEST(PipeFrame, HelloOnTheWire) {
    const Bytes expected{'Q', 'X', 'P', 'F', 1, 0, 1, 0, 16, 0, 0, 0, 0, 0, 0xCE, 0};
    EXPECT_EQ(PipeFrame::EncodeHello(0xCE0000), expected);
}

TEST(PipeFrame, MessageOnTheWire) {
    EXPECT_EQ(PipeFrame::EncodeMessage(Ping()), kPingBytes);
}

TEST(PipeFrame, HelloIsReadBack) {
    Decoder decoder;
    const auto frames = DecodeAll(decoder, PipeFrame::EncodeHello(-5));
    ASSERT_EQ(frames.size(), 1u);
    EXPECT_EQ(frames[0].kind, Kind::kHello);
    EXPECT_EQ(frames[0].clientId, -5);
    EXPECT_FALSE(decoder.HasPartial());
}

TEST(PipeFrame, EveryFieldIsReadBack) {
    const Bytes payload{0, 1, 2, 253, 254, 255};
    const TagIPCMessageItem sent = FullItem(payload);
    Decoder decoder;
    const auto frames = DecodeAll(decoder, *PipeFrame::EncodeMessage(sent));
    ASSERT_EQ(frames.size(), 1u);
    const TagIPCMessageItem item = frames[0].Item();
    EXPECT_EQ(item.text, sent.text);
    EXPECT_THAT(item.slot, testing::ElementsAreArray(sent.slot));
    EXPECT_EQ(item.flag, 0xA5);
    EXPECT_EQ(item.reserved, -2);
    ASSERT_NE(item.data, nullptr);
    EXPECT_EQ(std::memcmp(item.data, payload.data(), payload.size()), 0);
}

TEST(PipeFrame, FreshItemTravelsWithoutData) {
    Decoder decoder;
    const auto frames = DecodeAll(decoder, *PipeFrame::EncodeMessage(TagIPCMessageItem{}));
    ASSERT_EQ(frames.size(), 1u);
    const TagIPCMessageItem item = frames[0].Item();
    EXPECT_THAT(item.slot, testing::ElementsAre(-1, -1, -1, -1, -1, 0, 0));
    EXPECT_EQ(item.data, nullptr);
    EXPECT_EQ(item.text, "");
}

TEST(PipeFrame, LargestItemTravels) {
    const Bytes payload(PipeFrame::kMaxPayload, 0x5A);
    TagIPCMessageItem item = FullItem(payload);
    item.text.assign(PipeFrame::kMaxText, 'x');
    const auto bytes = PipeFrame::EncodeMessage(item);
    ASSERT_TRUE(bytes);
    EXPECT_EQ(bytes->size(), PipeFrame::kMaxFrame);
    Decoder decoder;
    const auto frames = DecodeAll(decoder, *bytes);
    ASSERT_EQ(frames.size(), 1u);
    EXPECT_EQ(frames[0].payload, payload);
    EXPECT_EQ(frames[0].text, item.text);
}

TEST(PipeFrame, ItemsThatCannotTravel) {
    const Bytes payload(PipeFrame::kMaxPayload + 1);
    TagIPCMessageItem item = FullItem(payload);
    EXPECT_FALSE(PipeFrame::EncodeMessage(item));
    item.slot[6] = -1;
    EXPECT_FALSE(PipeFrame::EncodeMessage(item));
    item.slot[6] = 1;
    EXPECT_TRUE(PipeFrame::EncodeMessage(item));
    item.data = nullptr;
    EXPECT_FALSE(PipeFrame::EncodeMessage(item));
    item.slot[6] = 0;
    EXPECT_TRUE(PipeFrame::EncodeMessage(item));
    item.text.assign(PipeFrame::kMaxText + 1, 'x');
    EXPECT_FALSE(PipeFrame::EncodeMessage(item));
}

TEST(PipeFrame, AnySplitGivesTheSameFrames) {
    Bytes stream = PipeFrame::EncodeHello(7);
    const Bytes payload{9, 8, 7};
    for (const Bytes& more : {kPingBytes, *PipeFrame::EncodeMessage(FullItem(payload)), kPingBytes}) {
        stream.insert(stream.end(), more.begin(), more.end());
    }
    Decoder whole;
    const auto expected = DecodeAll(whole, stream);
    ASSERT_EQ(expected.size(), 4u);
    for (std::size_t portion = 1; portion <= stream.size(); ++portion) {
        Decoder decoder;
        std::vector<Frame> frames;
        for (std::size_t at = 0; at < stream.size(); at += portion) {
            decoder.Feed(std::span(stream).subspan(at, std::min(portion, stream.size() - at)));
            while (auto frame = decoder.Next()) {
                frames.push_back(*frame);
            }
        }
        EXPECT_EQ(frames, expected) << "portions of " << portion;
        EXPECT_FALSE(decoder.HasPartial());
    }
}

TEST(PipeFrame, UnfinishedFrameIsPartial) {
    Decoder decoder;
    EXPECT_FALSE(decoder.HasPartial());
    EXPECT_TRUE(DecodeAll(decoder, Bytes(kPingBytes.begin(), kPingBytes.end() - 1)).empty());
    EXPECT_TRUE(decoder.HasPartial());
    EXPECT_EQ(decoder.refusal(), Refusal::kNone);
    EXPECT_EQ(DecodeAll(decoder, {0}).size(), 1u);
    EXPECT_FALSE(decoder.HasPartial());
}

TEST(PipeFrame, BadFieldsAreRefused) {
    EXPECT_EQ(RefusalOf(With(kPingBytes, 0, {'q'})), Refusal::kBadMagic);
    EXPECT_EQ(RefusalOf(With(kPingBytes, 3, {0})), Refusal::kBadMagic);
    EXPECT_EQ(RefusalOf(With(kPingBytes, 4, {2})), Refusal::kBadVersion);
    EXPECT_EQ(RefusalOf(With(kPingBytes, 5, {1})), Refusal::kBadVersion);
    EXPECT_EQ(RefusalOf(With(kPingBytes, 6, {0})), Refusal::kBadKind);
    EXPECT_EQ(RefusalOf(With(kPingBytes, 6, {3})), Refusal::kBadKind);
    EXPECT_EQ(RefusalOf(With(kPingBytes, 8, {51})), Refusal::kBadLength);
    EXPECT_EQ(RefusalOf(With(kPingBytes, 8, {0xFF, 0xFF, 0xFF, 0xFF})), Refusal::kBadLength);
    EXPECT_EQ(RefusalOf(With(kPingBytes, 12, {3})), Refusal::kBadTextLength);
    EXPECT_EQ(RefusalOf(With(kPingBytes, 12, {0xFF, 0xFF, 0xFF, 0xFF})), Refusal::kBadTextLength);
    EXPECT_EQ(RefusalOf(With(kPingBytes, 12, {1})), Refusal::kBadPayloadLength);
    EXPECT_EQ(RefusalOf(With(kPingBytes, 40, {1})), Refusal::kBadPayloadLength);
    EXPECT_EQ(RefusalOf(With(kPingBytes, 40, {0xFE, 0xFF, 0xFF, 0xFF})), Refusal::kBadPayloadLength);
    EXPECT_EQ(RefusalOf(With(kPingBytes, 49, {1})), Refusal::kBadPadding);
    EXPECT_EQ(RefusalOf(With(kPingBytes, 51, {1})), Refusal::kBadPadding);
    EXPECT_EQ(RefusalOf(With(PipeFrame::EncodeHello(1), 8, {17})), Refusal::kBadLength);
    EXPECT_EQ(RefusalOf(With(PipeFrame::EncodeHello(1), 8, {15})), Refusal::kBadLength);
}

// The whole frame is within bounds, but its text is short and its payload above the limit.
TEST(PipeFrame, PayloadAboveItsLimitIsRefused) {
    const std::uint32_t payload = PipeFrame::kMaxPayload + 1;
    const std::uint32_t length = PipeFrame::kMessageHeaderSize + payload;
    const auto byte = [](std::uint32_t value, int index) { return static_cast<std::uint8_t>(value >> 8 * index); };
    Bytes bytes = With(kPingBytes, 8, {byte(length, 0), byte(length, 1), byte(length, 2), byte(length, 3)});
    bytes = With(bytes, 40, {byte(payload, 0), byte(payload, 1), byte(payload, 2), byte(payload, 3)});
    EXPECT_EQ(RefusalOf(bytes), Refusal::kBadPayloadLength);
}

TEST(PipeFrame, NonsenseIsRefusedAtItsFirstByte) {
    EXPECT_EQ(RefusalOf({'X'}), Refusal::kBadMagic);
    EXPECT_EQ(RefusalOf({'Q', 'X', 'Q'}), Refusal::kBadMagic);
    EXPECT_EQ(RefusalOf(Bytes(kPingBytes.begin(), kPingBytes.begin() + 3)), Refusal::kNone);
    // A lying length is refused before any of the bytes that it announces.
    const Bytes lying = With(kPingBytes, 8, {0, 0, 0, 0x7F});
    EXPECT_EQ(RefusalOf(Bytes(lying.begin(), lying.begin() + 12)), Refusal::kBadLength);
}

TEST(PipeFrame, NothingComesAfterARefusal) {
    Decoder decoder;
    Bytes stream = kPingBytes;
    stream.push_back('?');
    EXPECT_EQ(DecodeAll(decoder, stream).size(), 1u);
    EXPECT_EQ(decoder.refusal(), Refusal::kBadMagic);
    EXPECT_FALSE(decoder.HasPartial());
    EXPECT_TRUE(DecodeAll(decoder, kPingBytes).empty());
    EXPECT_EQ(decoder.refusal(), Refusal::kBadMagic);
}

TEST(PipeFrame, EveryRefusalHasItsText) {
    std::vector<std::wstring> texts;
    for (int i = 0; i <= static_cast<int>(Refusal::kBadPadding); ++i) {
        const std::wstring text = PipeFrame::RefusalText(static_cast<Refusal>(i));
        EXPECT_FALSE(text.empty()) << i;
        EXPECT_EQ(std::count(texts.begin(), texts.end(), text), 0) << i;
        texts.push_back(text);
    }
}

}  // namespace
