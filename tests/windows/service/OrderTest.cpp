// In which order a setter writes the registry, reports and tells the camera service.
#include "tests/support/CallTrace.h"
#include "tests/windows/service/ServiceTest.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class OrderTest : public ServiceTest {
  protected:
    void SetUp() override {
        ServiceTest::SetUp();
        StartServer(server_);
        model_ = MakeModel();
        ASSERT_TRUE(WaitForModel(server_));
    }
    void TearDown() override {
        model_.reset();
        ServiceTest::TearDown();
    }

    PipeServer server_;
    HomeServiceTestAccess::Model model_;
};

TEST_F(OrderTest, RegistryThenUsageEventThenPing) {
    harness::CallTrace trace;
    model_->SetCorrectSight(1);
    EXPECT_THAT(trace.Take(), ElementsAre("lumi_camera_eye_correction=1", "report open correct sight", "ping"));
    model_->SetFocusPerson(0);
    EXPECT_THAT(trace.Take(), ElementsAre("lumi_camera_person_track=0", "report close focus person", "ping"));
}

TEST_F(OrderTest, TheSwitchStateGoesOutBeforeTheUsageEvent) {
    harness::CallTrace trace;
    model_->SetCameraSwitch(1);
    EXPECT_THAT(trace.Take(), ElementsAre("lumi_camera_switch=1", "switch state", "report open camera", "ping"));
    model_->SetCameraSwitch(0);
    EXPECT_THAT(trace.Take(), ElementsAre("lumi_camera_switch=0", "switch state", "report close camera", "ping"));
}

TEST_F(OrderTest, NoBackgroundNotesTheOneBeforeFirst) {
    harness::CallTrace trace;
    model_->SelectBackground(L"none_background_btn");
    EXPECT_THAT(trace.Take(), ElementsAre("pre_background_replacement=0", "lumi_camera_background_replacement=0",
                                          "report Background replacement:0", "ping"));
    model_->SelectBackground(L"img_ten_background_btn");
    EXPECT_THAT(trace.Take(),
                ElementsAre("lumi_camera_background_replacement=12", "report Background replacement:12", "ping"));
    model_->SelectBackground(L"nobody_btn");
    EXPECT_THAT(trace.Take(), IsEmpty());
}

TEST_F(OrderTest, BeautyIsWrittenAndNotTold) {
    harness::CallTrace trace;
    model_->SetBeautyPerson(1);
    model_->SetBeautySmooth(2);
    model_->SetBeautyWhite(3);
    model_->SetBeautyEye(4);
    model_->SetBeautyThin(5);
    EXPECT_THAT(trace.Take(),
                ElementsAre("lumi_camera_beauty_person=1", "lumi_camera_beauty_smooth=2", "lumi_camera_beauty_white=3",
                            "lumi_camera_beauty_eye=4", "lumi_camera_beauty_thin=5"));
}

TEST_F(OrderTest, TheDefaultsOfTheFirstRun) {
    model_.reset();
    DeleteKey();
    harness::CallTrace trace;
    model_ = MakeModel();
    EXPECT_THAT(trace.Take(),
                ElementsAre("lumi_camera_switch=1", "lumi_camera_background_image_path=",
                            "lumi_camera_background_replacement=0", "lumi_camera_eye_correction=0",
                            "lumi_camera_person_track=0", "lumi_camera_beauty_person=0", "lumi_camera_beauty_smooth=5",
                            "lumi_camera_beauty_white=5", "lumi_camera_beauty_eye=5", "lumi_camera_beauty_thin=5"));
}

}  // namespace
