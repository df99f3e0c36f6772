// The built-in backgrounds.
#include "service/FeatureTables.h"
#include "service/HomeService.h"
#include "service/SettingNames.h"
#include "service/SettingsStore.h"
#include "service/UsageEvents.h"

void HomeService::SelectBackground(const std::wstring& controlName) {
    const auto found = btnToFeature_.find(controlName);
    if (found == btnToFeature_.end()) {
        return;
    }
    if (found->second == FeatureTables::kNoBackground) {
        SettingsStore::Write(SettingNames::kPreBackgroundReplacement, 0);
    }
    ApplyBackground(found->second);
}

void HomeService::ApplyBackground(const std::wstring& featureName) {
    FeatureTables::AddFeatureIndexes(featureToIndex_);
    const auto found = featureToIndex_.find(featureName);
    const std::int32_t index = found != featureToIndex_.end() ? found->second : 0;
    SettingsStore::Write(SettingNames::kBackgroundReplacement, index);
    ReportUsage(UsageEvents::kBackground, "Background replacement:" + std::to_string(index));
    SendSignal();
}
