#include "service/BeautyLevels.h"

#include <cstddef>

#include "service/SettingsStore.h"

namespace service {

std::array<std::int32_t, kBeautyLevels.size()> ReadBeautyLevels() {
    std::array<std::int32_t, kBeautyLevels.size()> levels{};
    int level = kDefaultBeautyLevel;
    for (std::size_t i = 0; i < levels.size(); ++i) {
        SettingsStore::Read(kBeautyLevels[i].value, level);
        levels[i] = level;
    }
    return levels;
}

}  // namespace service
