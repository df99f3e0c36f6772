#pragma once
// The byte-stream interface that the suite's serialiser writes records to and reads them from.
#include <cstdint>

// Every operation returns 1 on success and 0 on failure. Integers are little-endian.
class IIPCDataIO {
  public:
    virtual int Reserve(std::int32_t byteCount) = 0;
    virtual int WriteInt(std::int32_t value) = 0;
    virtual int WriteByte(std::uint8_t value) = 0;
    virtual int WriteBytes(const void* bytes, std::int32_t byteCount) = 0;
    virtual int ReadInt(std::int32_t& value) = 0;
    virtual int ReadByte(std::uint8_t& value) = 0;
    virtual int ReadBytes(void* bytes, std::int32_t byteCount) = 0;

  protected:
    ~IIPCDataIO() = default;
};
