// The settings key: what the first run writes, and single values.
#include "service/SettingsStore.h"

#include "tests/windows/service/ServiceTest.h"

namespace {

class StoreTest : public ServiceTest {};

TEST_F(StoreTest, TheFirstRunCreatesExactlyTenValues) {
    ASSERT_FALSE(KeyExists());
    const auto model = MakeModel();
    const Values expected{{L"lumi_camera_switch", 1},
                          {L"lumi_camera_background_image_path", std::wstring()},
                          {L"lumi_camera_background_replacement", 0},
                          {L"lumi_camera_eye_correction", 0},
                          {L"lumi_camera_person_track", 0},
                          {L"lumi_camera_beauty_person", 0},
                          {L"lumi_camera_beauty_smooth", 5},
                          {L"lumi_camera_beauty_white", 5},
                          {L"lumi_camera_beauty_eye", 5},
                          {L"lumi_camera_beauty_thin", 5}};
    EXPECT_EQ(AllValues(), expected);
}

TEST_F(StoreTest, AnEmptyKeyStaysEmpty) {
    MakeEmptyKey();
    const auto model = MakeModel();
    EXPECT_EQ(AllValues(), Values{});
}

TEST_F(StoreTest, AKeyWithValuesStaysAsItIs) {
    Write(L"lumi_camera_beauty_eye", 9);
    Write(L"somebody_else", std::wstring(L"text"));
    const Values before = AllValues();
    const auto model = MakeModel();
    EXPECT_EQ(AllValues(), before);
}

TEST_F(StoreTest, AReadThatFailsLeavesTheVariable) {
    MakeEmptyKey();
    Write(L"text", std::wstring(L"a"));
    Write(L"number", 3);
    int number = 77;
    std::wstring text = L"before";
    EXPECT_FALSE(SettingsStore::Read(L"absent", number));
    EXPECT_FALSE(SettingsStore::Read(L"text", number));
    EXPECT_FALSE(SettingsStore::Read(L"absent", text));
    EXPECT_FALSE(SettingsStore::Read(L"number", text));
    EXPECT_EQ(number, 77);
    EXPECT_EQ(text, L"before");
    EXPECT_TRUE(SettingsStore::Read(L"number", number));
    EXPECT_TRUE(SettingsStore::Read(L"text", text));
    EXPECT_EQ(number, 3);
    EXPECT_EQ(text, L"a");
}

TEST_F(StoreTest, AWriteWithoutAKeyIsIgnored) {
    SettingsStore::Write(L"lumi_camera_switch", 1);
    SettingsStore::Write(L"lumi_camera_background_image_path", std::wstring(L"x"));
    EXPECT_FALSE(KeyExists());
}

TEST_F(StoreTest, KeepsNegativeNumbersAndAnyText) {
    MakeEmptyKey();
    SettingsStore::Write(L"number", -2);
    SettingsStore::Write(L"text", std::wstring(L"C:\\\u4e2d\u6587\\\U0001F600.jpg"));
    EXPECT_EQ(Read(L"number"), Value(-2));
    EXPECT_EQ(Read(L"text"), Value(std::wstring(L"C:\\\u4e2d\u6587\\\U0001F600.jpg")));
}

}  // namespace
