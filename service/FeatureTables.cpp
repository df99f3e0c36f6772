#include "service/FeatureTables.h"

#include "service/EffectTable.h"

namespace FeatureTables {

NameMap ControlToFeature() {
    NameMap map;
    for (const service::Effect& row : service::kEffects) {
        map.emplace(row.control, row.feature);
    }
    for (const Background& row : kBackgrounds) {
        map.emplace(row.control, row.feature);
    }
    return map;
}

NameMap Inverted(const NameMap& map) {
    NameMap inverted;
    for (const auto& [key, value] : map) {
        inverted[value] = key;
    }
    return inverted;
}

void AddFeatureIndexes(std::map<std::wstring, std::int32_t>& featureToIndex) {
    for (const Background& row : kBackgrounds) {
        featureToIndex.emplace(row.feature, row.index);
    }
}

void AddIndexControls(std::map<std::int32_t, std::wstring>& indexToControl) {
    for (const Background& row : kBackgrounds) {
        indexToControl.emplace(row.index, row.control);
    }
}

}  // namespace FeatureTables
