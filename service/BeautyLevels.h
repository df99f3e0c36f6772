#pragma once
// The four beauty levels as they are read for a snapshot and for a report. Any thread.
#include <cstdint>

struct BeautyLevels {
    std::int32_t smooth = 0;
    std::int32_t white = 0;
    std::int32_t eye = 0;
    std::int32_t thin = 0;
};

// A level that is missing has the value of the one before it, the first the default. Kept for compatibility.
BeautyLevels ReadBeautyLevels();
