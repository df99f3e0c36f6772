// What a setter writes and says, with and without a camera service.
#include "tests/windows/service/ServiceTest.h"

namespace {

class SwitchesTest : public ServiceTest {
  protected:
    struct Setter {
        void (HomeService::*set)(std::int32_t);
        const wchar_t* name;
        int pings;
    };
    static constexpr Setter kSetters[] = {
        {&HomeService::SetCameraSwitch, L"lumi_camera_switch", 1},
        {&HomeService::SetCorrectSight, L"lumi_camera_eye_correction", 1},
        {&HomeService::SetFocusPerson, L"lumi_camera_person_track", 1},
        {&HomeService::SetBeautyPerson, L"lumi_camera_beauty_person", 0},
        {&HomeService::SetBeautySmooth, L"lumi_camera_beauty_smooth", 0},
        {&HomeService::SetBeautyWhite, L"lumi_camera_beauty_white", 0},
        {&HomeService::SetBeautyEye, L"lumi_camera_beauty_eye", 0},
        {&HomeService::SetBeautyThin, L"lumi_camera_beauty_thin", 0},
    };
};

TEST_F(SwitchesTest, EachSetterWritesItsValueAndNoOther) {
    Expect("ipcclient send message");
    const auto model = MakeModel();
    for (const Setter& setter : kSetters) {
        for (const int value : {3, 0, 1, -1}) {
            Values expected = AllValues();
            expected[setter.name] = value;
            (model.get()->*setter.set)(value);
            EXPECT_EQ(AllValues(), expected);
        }
    }
}

TEST_F(SwitchesTest, WithoutAServiceEachPingIsOneLineOfTheLog) {
    Expect("ipcclient send message:1 error(HomeService::SendSignal)");
    const auto model = MakeModel();
    for (const Setter& setter : kSetters) {
        const int before = FailedPings();
        (model.get()->*setter.set)(1);
        EXPECT_EQ(FailedPings() - before, setter.pings);
    }
    EXPECT_EQ(LogLines("[L4]"), 3);
}

TEST_F(SwitchesTest, ABackgroundIsWrittenByItsNumber) {
    Expect("ipcclient send message");
    const auto model = MakeModel();
    const Values before = AllValues();
    model->SelectBackground(L"img_ten_background_btn");
    Values expected = before;
    expected[L"lumi_camera_background_replacement"] = 12;
    EXPECT_EQ(AllValues(), expected);
    model->SelectBackground(L"custom_background_btn");
    EXPECT_EQ(Read(L"lumi_camera_background_replacement"), Value(5));
    EXPECT_EQ(FailedPings(), 2);
}

TEST_F(SwitchesTest, NoBackgroundIsAlsoWrittenAsTheOneBefore) {
    Expect("ipcclient send message");
    const auto model = MakeModel();
    model->SelectBackground(L"img_one_background_btn");
    EXPECT_EQ(Read(L"pre_background_replacement"), std::nullopt);
    Write(L"pre_background_replacement", 9);
    model->SelectBackground(L"none_background_btn");
    EXPECT_EQ(Read(L"pre_background_replacement"), Value(0));
    EXPECT_EQ(Read(L"lumi_camera_background_replacement"), Value(0));
}

TEST_F(SwitchesTest, AControlThatStandsForNothingChangesNothing) {
    const auto model = MakeModel();
    const Values before = AllValues();
    model->SelectBackground(L"custom_background_btn_1");
    model->SelectBackground(L"none_background");
    model->SelectBackground(L"");
    EXPECT_EQ(AllValues(), before);
    EXPECT_EQ(FailedPings(), 0);
}

TEST_F(SwitchesTest, AFeatureWithoutANumberCountsAsNoBackground) {
    Expect("ipcclient send message");
    const auto model = MakeModel();
    for (const wchar_t* feature : {L"open_camera", L"no such feature"}) {
        Write(L"lumi_camera_background_replacement", 3);
        model->ApplyBackground(feature);
        EXPECT_EQ(Read(L"lumi_camera_background_replacement"), Value(0));
    }
    EXPECT_EQ(FailedPings(), 2);
    EXPECT_EQ(Read(L"pre_background_replacement"), std::nullopt);
}

}  // namespace
