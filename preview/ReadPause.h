#pragma once
// How long to wait before the next read when reads bring no frame: some systems complete failing reads at once, again
// and again, and a core must not be kept busy by that. Pure function, any thread.
#include <algorithm>

namespace preview {

// `readsWithoutFrame`: in a row. The first two are followed at once.
constexpr int PauseBeforeReadMs(int readsWithoutFrame) {
    constexpr int kAtOnce = 2;
    constexpr int kStepMs = 10;
    constexpr int kMostMs = 100;
    return std::clamp((readsWithoutFrame - kAtOnce) * kStepMs, 0, kMostMs);
}

}  // namespace preview
