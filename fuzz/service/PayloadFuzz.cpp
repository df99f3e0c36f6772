// The payload buffer under any series of operations, beside a plain vector that says what it must hold. Each operation
// is one byte that names it and one that is its number.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "fuzz/support/Require.h"
#include "service/link/IPCDataIO.h"

namespace {

class Twin {
  public:
    void Do(std::uint8_t operation, std::uint8_t number) {
        switch (operation % 6) {
            case 0:
                REQUIRE(io_.Reserve(number * 8) == 1);
                Grow(number * 8u);
                break;
            case 1:
                REQUIRE(io_.WriteInt(static_cast<std::int32_t>(number * 0x01010101u)) == 1);
                Written(4, number);
                break;
            case 2:
                REQUIRE(io_.WriteByte(number) == 1);
                Written(1, number);
                break;
            case 3: {
                const std::vector<std::uint8_t> bytes(number, number);
                REQUIRE(io_.WriteBytes(bytes.data(), number) == 1);
                Written(number, number);
                break;
            }
            case 4: {
                std::vector<std::uint8_t> bytes(number);
                const bool fits = position_ + number <= held_.size();
                REQUIRE((io_.ReadBytes(bytes.data(), number) == 1) == fits);
                if (fits) {
                    REQUIRE(std::equal(bytes.begin(), bytes.end(), held_.begin() + Offset()));
                    position_ += number;
                }
                break;
            }
            default:
                REQUIRE(io_.Reserve(-1 - number) == 0);
                REQUIRE(io_.WriteBytes(nullptr, -1 - number) == 0);
                REQUIRE(io_.ReadBytes(nullptr, -1 - number) == 0);
                REQUIRE(io_.Reserve(0x7FFFFFFF - number % 60) == 0);
        }
        REQUIRE(io_.Position() == static_cast<std::int32_t>(position_));
        REQUIRE(std::equal(held_.begin(), held_.end(), io_.Data()));
    }

  private:
    std::ptrdiff_t Offset() const { return static_cast<std::ptrdiff_t>(position_); }
    void Grow(std::size_t count) {
        const std::size_t blocks = (position_ + count + IPCDataIO::kBlockSize - 1) / IPCDataIO::kBlockSize;
        held_.resize(std::max(held_.size(), blocks * IPCDataIO::kBlockSize));
    }
    void Written(std::size_t count, std::uint8_t byte) {
        Grow(count);
        std::fill_n(held_.begin() + Offset(), count, byte);
        position_ += count;
    }

    IPCDataIO io_;
    std::vector<std::uint8_t> held_ = std::vector<std::uint8_t>(IPCDataIO::kBlockSize);
    std::size_t position_ = 0;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Twin twin;
    for (std::size_t i = 0; i + 1 < size && i < 400; i += 2) {
        twin.Do(data[i], data[i + 1]);
    }
    return 0;
}
