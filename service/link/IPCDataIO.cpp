#include "service/link/IPCDataIO.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <new>
#include <utility>

namespace {

constexpr std::size_t kIntSize = 4;

std::unique_ptr<IPCDataBuffer> MakeBuffer() {
    std::unique_ptr<IPCDataBuffer> buffer(new (std::nothrow) IPCDataBuffer);
    if (buffer) {
        buffer->bytes.reset(new (std::nothrow) std::uint8_t[IPCDataIO::kBlockSize]());
        buffer->capacity = buffer->bytes ? IPCDataIO::kBlockSize : 0;
    }
    return buffer;
}

}  // namespace

IPCDataIO::IPCDataIO() : IPCDataIO(MakeBuffer()) {}

IPCDataIO::IPCDataIO(IPCDataBuffer* borrowed) : buffer_(borrowed) {}

IPCDataIO::IPCDataIO(std::unique_ptr<IPCDataBuffer> owned) : owned_(std::move(owned)), buffer_(owned_.get()) {}

int IPCDataIO::Reserve(std::int32_t byteCount) {
    if (!Attached() || byteCount < 0) {
        return 0;
    }
    const std::int64_t end = std::int64_t{position_} + byteCount;
    if (end > kMaxSize) {
        return 0;
    }
    if (end <= buffer_->capacity) {
        return 1;
    }
    const std::int64_t capacity = (end + kBlockSize - 1) / kBlockSize * kBlockSize;
    std::unique_ptr<std::uint8_t[]> grown(new (std::nothrow) std::uint8_t[static_cast<std::size_t>(capacity)]);
    if (!grown) {
        return 0;
    }
    std::uint8_t* const tail = std::copy_n(buffer_->bytes.get(), buffer_->capacity, grown.get());
    std::fill(tail, grown.get() + capacity, std::uint8_t{0});
    buffer_->bytes = std::move(grown);
    buffer_->capacity = static_cast<std::int32_t>(capacity);
    return 1;
}

int IPCDataIO::WriteInt(std::int32_t value) {
    const auto bits = static_cast<std::uint32_t>(value);
    const std::array<std::uint8_t, kIntSize> bytes{
        static_cast<std::uint8_t>(bits), static_cast<std::uint8_t>(bits >> 8), static_cast<std::uint8_t>(bits >> 16),
        static_cast<std::uint8_t>(bits >> 24)};
    return WriteBytes(bytes.data(), kIntSize);
}

int IPCDataIO::WriteByte(std::uint8_t value) {
    return WriteBytes(&value, 1);
}

int IPCDataIO::WriteBytes(const void* bytes, std::int32_t byteCount) {
    if (Reserve(byteCount) == 0) {
        return 0;
    }
    if (byteCount > 0) {
        std::memcpy(buffer_->bytes.get() + position_, bytes, static_cast<std::size_t>(byteCount));
        position_ += byteCount;
    }
    return 1;
}

int IPCDataIO::ReadInt(std::int32_t& value) {
    std::array<std::uint8_t, kIntSize> bytes{};
    if (ReadBytes(bytes.data(), kIntSize) == 0) {
        return 0;
    }
    value = static_cast<std::int32_t>(bytes[0] | static_cast<std::uint32_t>(bytes[1]) << 8 |
                                      static_cast<std::uint32_t>(bytes[2]) << 16 |
                                      static_cast<std::uint32_t>(bytes[3]) << 24);
    return 1;
}

int IPCDataIO::ReadByte(std::uint8_t& value) {
    return ReadBytes(&value, 1);
}

int IPCDataIO::ReadBytes(void* bytes, std::int32_t byteCount) {
    if (!Attached() || byteCount < 0 || std::int64_t{position_} + byteCount > buffer_->capacity) {
        return 0;
    }
    if (byteCount > 0) {
        std::memcpy(bytes, buffer_->bytes.get() + position_, static_cast<std::size_t>(byteCount));
        position_ += byteCount;
    }
    return 1;
}
