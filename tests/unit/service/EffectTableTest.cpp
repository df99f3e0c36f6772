#include "service/EffectTable.h"

#include <gmock/gmock.h>

#include <set>
#include <string>

#include "service/FeatureTables.h"

namespace {

using service::EffectId;
using service::Telling;
using testing::ElementsAre;

TEST(EffectTableTest, ASnapshotReadsBeautyBeforeSightAndFraming) {
    EXPECT_THAT(service::ReadOrder(), ElementsAre(EffectId::kCamera, EffectId::kBeautyPerson, EffectId::kCorrectSight,
                                                  EffectId::kFocusPerson));
}

TEST(EffectTableTest, EveryRowIsFoundByItsNumberAndItsControl) {
    for (const service::Effect& effect : service::kEffects) {
        EXPECT_EQ(&service::EffectOf(effect.id), &effect);
        EXPECT_EQ(service::EffectOfControl(effect.control), &effect);
    }
    EXPECT_EQ(service::EffectOfControl(L"none_background_btn"), nullptr);
    EXPECT_EQ(service::EffectOfControl(L""), nullptr);
}

TEST(EffectTableTest, ValuesAndEventsAreNobodyElses) {
    std::set<std::wstring> values;
    std::set<std::string> events{"631770002"};
    for (const service::Effect& effect : service::kEffects) {
        EXPECT_TRUE(values.insert(effect.value).second) << effect.value;
        if (effect.telling != Telling::kBeautyReport) {
            EXPECT_TRUE(events.insert(effect.event).second) << effect.event;
            EXPECT_STRNE(effect.onText, "");
            EXPECT_STRNE(effect.offText, "");
        }
    }
    for (const service::BeautyLevel& level : service::kBeautyLevels) {
        EXPECT_TRUE(values.insert(level.value).second) << level.value;
    }
}

TEST(EffectTableTest, WhatIsExcludedIsAnEffectOrTheBackground) {
    for (const service::Effect& effect : service::kEffects) {
        if (!effect.excludes.empty() && effect.excludes != service::kNoBackgroundControl) {
            ASSERT_NE(service::EffectOfControl(effect.excludes), nullptr) << effect.value;
            EXPECT_NE(effect.excludes, effect.control);
        }
    }
    EXPECT_EQ(FeatureTables::kBackgrounds[0].control, service::kNoBackgroundControl);
}

TEST(EffectTableTest, EverySliderIsFoundByItsKindAndItsControl) {
    for (const service::BeautyLevel& level : service::kBeautyLevels) {
        EXPECT_EQ(service::BeautyLevelOf(level.kind), &level);
        EXPECT_EQ(service::BeautyLevelOfControl(level.control), &level);
    }
    EXPECT_EQ(service::BeautyLevelOf(static_cast<GlobalUtils::BeautyKind>(4)), nullptr);
    EXPECT_EQ(service::BeautyLevelOfControl(L"beauty_sliders"), nullptr);
    EXPECT_STREQ(service::BeautyLevelOfControl(L"slider_face")->value, L"lumi_camera_beauty_thin");
}

}  // namespace
