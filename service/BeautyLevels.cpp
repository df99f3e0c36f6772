#include "service/BeautyLevels.h"

#include "service/SettingNames.h"
#include "service/SettingsStore.h"

BeautyLevels ReadBeautyLevels() {
    BeautyLevels levels;
    int level = SettingNames::kDefaultBeautyLevel;
    SettingsStore::Read(SettingNames::kBeautySmooth, level);
    levels.smooth = level;
    SettingsStore::Read(SettingNames::kBeautyWhite, level);
    levels.white = level;
    SettingsStore::Read(SettingNames::kBeautyEye, level);
    levels.eye = level;
    SettingsStore::Read(SettingNames::kBeautyThin, level);
    levels.thin = level;
    return levels;
}
