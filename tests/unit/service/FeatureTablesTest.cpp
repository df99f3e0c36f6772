#include "service/FeatureTables.h"

#include <gtest/gtest.h>

#include <set>

namespace {

using FeatureTables::NameMap;

TEST(FeatureTablesTest, EveryFeatureMapsBackToExactlyOneControl) {
    const NameMap features = FeatureTables::ControlToFeature();
    const NameMap controls = FeatureTables::Inverted(features);
    EXPECT_EQ(features.size(), 19u);
    EXPECT_EQ(controls.size(), 19u);
    for (const auto& [control, feature] : features) {
        EXPECT_EQ(controls.at(feature), control);
        EXPECT_EQ(control, feature + L"_btn");
    }
}

TEST(FeatureTablesTest, BackgroundNumbersAreThoseOfTheCameraService) {
    std::map<std::wstring, std::int32_t> indexes;
    FeatureTables::AddFeatureIndexes(indexes);
    ASSERT_EQ(indexes.size(), 15u);
    EXPECT_EQ(indexes.at(L"none_background"), 0);
    EXPECT_EQ(indexes.at(L"img_three_background"), 3);
    EXPECT_EQ(indexes.at(L"virtual_background"), 4);
    EXPECT_EQ(indexes.at(L"custom_background"), 5);
    EXPECT_EQ(indexes.at(L"img_four_background"), 6);
    EXPECT_EQ(indexes.at(L"img_eleven_background"), 13);
    EXPECT_EQ(indexes.at(L"img_animation_background"), 14);
}

TEST(FeatureTablesTest, IndexFeatureAndControlAgree) {
    const NameMap features = FeatureTables::ControlToFeature();
    std::set<std::int32_t> seen;
    for (const FeatureTables::Background& row : FeatureTables::kBackgrounds) {
        EXPECT_EQ(features.at(std::wstring(row.control)), row.feature);
        EXPECT_TRUE(seen.insert(row.index).second);
    }
    EXPECT_EQ(*seen.begin(), 0);
    EXPECT_EQ(*seen.rbegin(), 14);
}

TEST(FeatureTablesTest, FillingLeavesExistingEntriesAlone) {
    std::map<std::int32_t, std::wstring> controls{{3, L"other"}, {99, L""}};
    FeatureTables::AddIndexControls(controls);
    EXPECT_EQ(controls.size(), 16u);
    EXPECT_EQ(controls.at(3), L"other");
    EXPECT_EQ(controls.at(99), L"");
    EXPECT_EQ(controls.at(12), L"img_ten_background_btn");
}

}  // namespace
