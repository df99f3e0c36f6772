#include "service/link/IPCDataIO.h"

#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <limits>
#include <vector>

namespace {

constexpr std::int32_t kMaxInt = std::numeric_limits<std::int32_t>::max();

std::unique_ptr<IPCDataBuffer> MakeBuffer(std::int32_t capacity) {
    auto buffer = std::make_unique<IPCDataBuffer>();
    buffer->bytes = std::make_unique<std::uint8_t[]>(static_cast<std::size_t>(capacity));
    buffer->capacity = capacity;
    return buffer;
}

TEST(IPCDataIOTest, WritesLittleEndianFromTheStart) {
    IPCDataIO io;
    EXPECT_EQ(io.Position(), 0);
    EXPECT_EQ(io.WriteInt(0x04030201), 1);
    EXPECT_EQ(io.WriteByte(5), 1);
    EXPECT_EQ(io.WriteBytes("\x06\x07", 2), 1);
    EXPECT_EQ(io.WriteInt(-2), 1);
    const std::array<std::uint8_t, 11> expected{1, 2, 3, 4, 5, 6, 7, 0xFE, 0xFF, 0xFF, 0xFF};
    ASSERT_EQ(io.Position(), 11);
    EXPECT_EQ(std::memcmp(io.Data(), expected.data(), expected.size()), 0);
}

TEST(IPCDataIOTest, ReadsWhatAnotherObjectWroteToTheSameRecord) {
    const auto buffer = MakeBuffer(64);
    IPCDataIO writer(buffer.get());
    writer.WriteInt(-5);
    writer.WriteByte(200);
    writer.WriteBytes("ab", 2);
    IPCDataIO reader(buffer.get());
    std::int32_t number = 0;
    std::uint8_t byte = 0;
    std::array<char, 2> text{};
    EXPECT_EQ(reader.ReadInt(number), 1);
    EXPECT_EQ(reader.ReadByte(byte), 1);
    EXPECT_EQ(reader.ReadBytes(text.data(), 2), 1);
    EXPECT_EQ(number, -5);
    EXPECT_EQ(byte, 200);
    EXPECT_EQ(text, (std::array<char, 2>{'a', 'b'}));
    EXPECT_EQ(reader.Position(), writer.Position());
}

TEST(IPCDataIOTest, EachByteOfANumberComesBackToItsPlace) {
    for (const std::int32_t number : {0x01020304, -0x01020304, 0x7F000000, 0x00FF0000, 0x0000FF00, 0x000000FF}) {
        const auto buffer = MakeBuffer(64);
        IPCDataIO(buffer.get()).WriteInt(number);
        std::int32_t read = 0;
        EXPECT_EQ(IPCDataIO(buffer.get()).ReadInt(read), 1);
        EXPECT_EQ(read, number);
    }
}

TEST(IPCDataIOTest, GrowsToTheNextMultipleOfTheBlockSize) {
    const auto buffer = MakeBuffer(64);
    IPCDataIO io(buffer.get());
    const std::vector<std::uint8_t> bytes(64, 0xAA);
    EXPECT_EQ(io.WriteBytes(bytes.data(), 64), 1);
    EXPECT_EQ(buffer->capacity, 64);
    EXPECT_EQ(io.WriteByte(0xBB), 1);
    EXPECT_EQ(buffer->capacity, 128);
    EXPECT_EQ(std::memcmp(io.Data(), bytes.data(), 64), 0);
    EXPECT_EQ(io.Data()[64], 0xBB);
    EXPECT_EQ(io.Data()[127], 0);
    EXPECT_EQ(io.Reserve(1000), 1);
    EXPECT_EQ(buffer->capacity, 1088);
    EXPECT_EQ(io.Position(), 65);
    EXPECT_EQ(io.Reserve(1023), 1);
    EXPECT_EQ(buffer->capacity, 1088);
}

TEST(IPCDataIOTest, GrowsAnOddCapacityToAMultiple) {
    const auto buffer = MakeBuffer(10);
    IPCDataIO io(buffer.get());
    EXPECT_EQ(io.WriteBytes("01234567890", 11), 1);
    EXPECT_EQ(buffer->capacity, 64);
}

TEST(IPCDataIOTest, ReadingEndsAtTheCapacity) {
    const auto buffer = MakeBuffer(6);
    IPCDataIO io(buffer.get());
    std::int32_t number = 7;
    EXPECT_EQ(io.ReadInt(number), 1);
    EXPECT_EQ(number, 0);
    number = 7;
    EXPECT_EQ(io.ReadInt(number), 0);
    EXPECT_EQ(number, 7);
    EXPECT_EQ(io.Position(), 4);
    std::array<std::uint8_t, 3> bytes{};
    EXPECT_EQ(io.ReadBytes(bytes.data(), 3), 0);
    EXPECT_EQ(io.ReadBytes(bytes.data(), 2), 1);
    std::uint8_t byte = 9;
    EXPECT_EQ(io.ReadByte(byte), 0);
    EXPECT_EQ(byte, 9);
    EXPECT_EQ(io.ReadBytes(bytes.data(), 0), 1);
    EXPECT_EQ(buffer->capacity, 6);
}

TEST(IPCDataIOTest, RefusesNegativeAndTooLargeRequests) {
    IPCDataIO io;
    std::array<std::uint8_t, 8> bytes{};
    EXPECT_EQ(io.WriteInt(1), 1);
    EXPECT_EQ(io.Reserve(-1), 0);
    EXPECT_EQ(io.WriteBytes(bytes.data(), -1), 0);
    EXPECT_EQ(io.ReadBytes(bytes.data(), -1), 0);
    EXPECT_EQ(io.WriteBytes(bytes.data(), std::numeric_limits<std::int32_t>::min()), 0);
    EXPECT_EQ(io.Reserve(kMaxInt), 0);
    EXPECT_EQ(io.WriteBytes(bytes.data(), kMaxInt - 64), 0);
    EXPECT_EQ(io.ReadBytes(bytes.data(), kMaxInt), 0);
    EXPECT_EQ(io.WriteBytes(nullptr, 0), 1) << "nothing is read from nowhere";
    EXPECT_EQ(io.ReadBytes(nullptr, 0), 1) << "nor written to";
    EXPECT_EQ(io.Position(), 4);
    EXPECT_EQ(io.Reserve(0), 1);
}

TEST(IPCDataIOTest, TheLimitIsOneBlockBelowTwoGiB) {
    // A record that claims to be full: growing it by one byte would pass the limit, so nothing is touched.
    const auto buffer = MakeBuffer(64);
    buffer->capacity = static_cast<std::int32_t>(IPCDataIO::kMaxSize);
    IPCDataIO io(buffer.get());
    EXPECT_EQ(io.Reserve(static_cast<std::int32_t>(IPCDataIO::kMaxSize)), 1);
    EXPECT_EQ(io.Reserve(static_cast<std::int32_t>(IPCDataIO::kMaxSize) + 1), 0);
}

TEST(IPCDataIOTest, FailsWithoutABlock) {
    IPCDataBuffer empty;
    for (IPCDataBuffer* buffer : {static_cast<IPCDataBuffer*>(nullptr), &empty}) {
        IPCDataIO io(buffer);
        std::int32_t number = 3;
        std::uint8_t byte = 4;
        EXPECT_EQ(io.Reserve(0), 0);
        EXPECT_EQ(io.Reserve(8), 0);
        EXPECT_EQ(io.WriteInt(1), 0);
        EXPECT_EQ(io.WriteByte(1), 0);
        EXPECT_EQ(io.WriteBytes("a", 1), 0);
        EXPECT_EQ(io.ReadInt(number), 0);
        EXPECT_EQ(io.ReadByte(byte), 0);
        EXPECT_EQ(io.ReadBytes(&byte, 0), 0);
        EXPECT_EQ(number, 3);
        EXPECT_EQ(byte, 4);
        EXPECT_EQ(io.Data(), nullptr);
    }
}

TEST(IPCDataIOTest, DeletesARecordOfItsOwnAndLeavesABorrowedOne) {
    // The address sanitizer tells of a leak or a second deletion.
    { IPCDataIO io(MakeBuffer(64)); }
    const auto buffer = MakeBuffer(64);
    {
        IPCDataIO io(buffer.get());
        io.WriteByte(1);
    }
    EXPECT_EQ(buffer->bytes[0], 1);
}

}  // namespace
