#pragma once
// The beauty levels as they are read for a snapshot and for a report. Any thread.
#include <array>
#include <cstdint>

#include "service/EffectTable.h"

namespace service {

// In the order of kBeautyLevels. A level that is missing has the value of the one before it, the first the default.
// Kept for compatibility.
std::array<std::int32_t, kBeautyLevels.size()> ReadBeautyLevels();

}  // namespace service
