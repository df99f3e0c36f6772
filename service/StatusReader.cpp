#include "service/StatusReader.h"

#include <cstddef>

#include "service/EffectTable.h"
#include "service/FeatureTables.h"
#include "service/SettingNames.h"
#include "service/SettingsStore.h"

namespace service {

using GlobalUtils::FeatureStatus;

GlobalUtils::FeatureStatusTuple StatusReader::Read() {
    GlobalUtils::FeatureStatusTuple status;
    auto& [switches, levels, background] = status;

    // One variable for all: what is missing keeps the value read before it.
    int value = 0;
    for (const EffectId id : ReadOrder()) {
        const Effect& effect = EffectOf(id);
        SettingsStore::Read(effect.value, value);
        switches[std::wstring(effect.control)] = static_cast<FeatureStatus>(value);
    }
    SettingsStore::Read(SettingNames::kBackgroundReplacement, value);

    const auto beauty = SettingsStore::ReadBeautyLevels();
    for (std::size_t i = 0; i < beauty.size(); ++i) {
        levels[std::wstring(kBeautyLevels[i].control)] = beauty[i];
    }

    {
        const std::scoped_lock lock(mutex_);
        FeatureTables::AddIndexControls(indexToBtn_);
        background.btnName = indexToBtn_[value];
    }
    SettingsStore::Read(SettingNames::kBackgroundImagePath, background.path);
    if (background.btnName == FeatureTables::kCustomControl) {
        background.btnName.clear();
        SettingsStore::Read(SettingNames::kSelectedButtonName, background.btnName);
    }
    return status;
}

bool StatusReader::HasRead() const {
    const std::scoped_lock lock(mutex_);
    return !indexToBtn_.empty();
}

}  // namespace service
