#pragma once
// The growable byte buffer that message payloads are serialised into and read from; one position serves both.
//
// Why: the suite's serialiser writes to an IIPCDataIO and leaves the memory to the program. The buffer record may be
// the writer's own or borrowed, so that what one object wrote another can read. Every operation fails when no block is
// attached, a write when the memory cannot be had, and none of them changes anything then.
// Threads: belongs to one thread at a time. Nothing throws.
#include <cstdint>
#include <memory>

#include "suite/ipc/IIPCDataIO.h"

struct IPCDataBuffer {
    std::unique_ptr<std::uint8_t[]> bytes;
    std::int32_t capacity = 0;  // bytes, a multiple of IPCDataIO::kBlockSize once it has grown
};

class IPCDataIO final : public IIPCDataIO {
  public:
    static constexpr std::int32_t kBlockSize = 64;
    // The largest capacity.
    static constexpr std::int64_t kMaxSize = 0x80000000LL - kBlockSize;

    // With a record of its own, one block large.
    IPCDataIO();
    // Borrowed; must outlive this object. Null leaves it without a block. Writing may replace the record's block.
    explicit IPCDataIO(IPCDataBuffer* borrowed);
    // The record is deleted with this object.
    explicit IPCDataIO(std::unique_ptr<IPCDataBuffer> owned);
    ~IPCDataIO() = default;
    IPCDataIO(const IPCDataIO&) = delete;
    IPCDataIO& operator=(const IPCDataIO&) = delete;

    // Makes room for that many more bytes after the position.
    int Reserve(std::int32_t byteCount) override;
    int WriteInt(std::int32_t value) override;
    int WriteByte(std::uint8_t value) override;
    int WriteBytes(const void* bytes, std::int32_t byteCount) override;
    // Reading ends at the capacity, not at what was written; bytes that nobody wrote are 0.
    int ReadInt(std::int32_t& value) override;
    int ReadByte(std::uint8_t& value) override;
    int ReadBytes(void* bytes, std::int32_t byteCount) override;

    // Bytes written or read so far.
    std::int32_t Position() const { return position_; }
    // The block from its start; null when there is none. Valid until the next write or Reserve.
    const std::uint8_t* Data() const { return buffer_ ? buffer_->bytes.get() : nullptr; }

  private:
    bool Attached() const { return Data() != nullptr; }

    const std::unique_ptr<IPCDataBuffer> owned_;  // null when the record is borrowed
    IPCDataBuffer* const buffer_;                 // owned_, or borrowed, or null
    std::int32_t position_ = 0;
};
