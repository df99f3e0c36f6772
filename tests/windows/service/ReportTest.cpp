// Usage events in the real spool file.
#include <fstream>
#include <mutex>
#include <thread>

#include "tests/support/ImportHook.h"
#include "tests/windows/service/ServiceTest.h"

namespace {

class ReportTest : public ServiceTest {
  protected:
    void SetUp() override {
        ServiceTest::SetUp();
        Allow("ipcclient send message");
        model_ = MakeModel();
        start_ = LinesUpTo("begin").size();
    }

    static std::filesystem::path SpoolFile() {
        return Folder() / L"Velmora" / L"Quillon" / L"Report" / L"events.jsonl";
    }

    // The events since the test began, without their times, once this marker is among them.
    std::vector<std::string> EventsUpTo(const std::string& marker) {
        std::vector<std::string> events = LinesUpTo(marker);
        if (events.size() <= start_) {
            return {"no events"};
        }
        events.erase(events.begin(), events.begin() + static_cast<std::ptrdiff_t>(start_));
        events.pop_back();
        return events;
    }
    // That many beauty events, which come from threads of their own.
    std::vector<std::string> BeautyEvents(std::size_t count) {
        std::vector<std::string> events;
        harness::WaitUntil([&] {
            events = EventsUpTo("looked");
            std::erase_if(events, [](const std::string& line) { return line.find("992612801") == std::string::npos; });
            return events.size() >= count;
        });
        return events;
    }

    static std::string Event(const std::string& id, const std::string& text) {
        return "\"event\":\"" + id + "\",\"text\":\"" + text + "\"}";
    }
    static std::string Beauty(int status, int smooth, int white, int eye, int thin) {
        return "\"event\":\"992612801\",\"fields\":{\"STATUS\":" + std::to_string(status) +
               ",\"SMOOTH\":" + std::to_string(smooth) + ",\"WHITE\":" + std::to_string(white) +
               ",\"EYE\":" + std::to_string(eye) + ",\"THIN\":" + std::to_string(thin) + "}}";
    }

    HomeServiceTestAccess::Model model_;

  private:
    // Reports the marker and waits until it is in the file: all that was queued before it is there then. The file may
    // be out of reach for moments.
    static std::vector<std::string> LinesUpTo(const std::string& marker) {
        static int count = 0;
        const std::string text = marker + std::to_string(++count);
        HomeService::ReportUsage("1", text);
        std::vector<std::string> lines;
        EXPECT_TRUE(harness::WaitUntil([&] {
            lines = Lines();
            const auto found = std::find(lines.begin(), lines.end(), Event("1", text));
            if (found == lines.end()) {
                return false;
            }
            lines.erase(found + 1, lines.end());
            return true;
        })) << "the spool did not get the event in time";
        return lines;
    }
    static std::vector<std::string> Lines() {
        std::vector<std::string> lines;
        std::ifstream file(SpoolFile());
        for (std::string line; std::getline(file, line);) {
            // {"time":"2026-11-21T09:15:30.123Z", comes first.
            lines.push_back(line.substr(line.find(',') + 1));
        }
        return lines;
    }

    std::size_t start_ = 0;
};

TEST_F(ReportTest, EverySwitchHasItsEventAndText) {
    model_->SetCameraSwitch(1);
    model_->SetCameraSwitch(0);
    model_->SetCameraSwitch(2);
    model_->SetFocusPerson(1);
    model_->SetFocusPerson(0);
    model_->SetCorrectSight(1);
    model_->SetCorrectSight(-1);
    const std::vector<std::string> expected{
        Event("631770001", "open camera"),        Event("631770001", "close camera"),
        Event("631770001", "close camera"),       Event("631770003", "open focus person"),
        Event("631770003", "close focus person"), Event("631770004", "open correct sight"),
        Event("631770004", "close correct sight")};
    EXPECT_EQ(EventsUpTo("end"), expected);
}

TEST_F(ReportTest, ABackgroundIsReportedByItsNumber) {
    model_->SelectBackground(L"none_background_btn");
    model_->SelectBackground(L"img_ten_background_btn");
    model_->ApplyBackground(L"custom_background");
    model_->SelectBackground(L"nobody_btn");
    const std::vector<std::string> expected{Event("631770002", "Background replacement:0"),
                                            Event("631770002", "Background replacement:12"),
                                            Event("631770002", "Background replacement:5")};
    EXPECT_EQ(EventsUpTo("end"), expected);
}

TEST_F(ReportTest, AnEmptyTextIsNoEvent) {
    HomeService::ReportUsage("631770001", "");
    EXPECT_EQ(EventsUpTo("end"), std::vector<std::string>{});
}

TEST_F(ReportTest, WithoutBeautyValuesTheEventHasTheDefaults) {
    DeleteKey();
    HomeService::ReportBeauty();
    EXPECT_EQ(BeautyEvents(1), std::vector{Beauty(0, 5, 5, 5, 5)});
}

TEST_F(ReportTest, AMissingLevelHasTheValueOfTheOneBefore) {
    DeleteKey();
    Write(L"lumi_camera_beauty_person", 1);
    Write(L"lumi_camera_beauty_white", 7);
    HomeService::ReportBeauty();
    EXPECT_EQ(BeautyEvents(1), std::vector{Beauty(1, 5, 7, 7, 7)});
}

TEST_F(ReportTest, EachBeautyChangeReportsWhatTheRegistryHoldsThen) {
    model_->SetBeautyPerson(1);
    EXPECT_EQ(BeautyEvents(1).back(), Beauty(1, 5, 5, 5, 5));
    model_->SetBeautySmooth(1);
    EXPECT_EQ(BeautyEvents(2).back(), Beauty(1, 1, 5, 5, 5));
    model_->SetBeautyWhite(2);
    EXPECT_EQ(BeautyEvents(3).back(), Beauty(1, 1, 2, 5, 5));
    model_->SetBeautyEye(3);
    EXPECT_EQ(BeautyEvents(4).back(), Beauty(1, 1, 2, 3, 5));
    model_->SetBeautyThin(4);
    const std::vector<std::string> events = BeautyEvents(5);
    EXPECT_EQ(events.size(), 5u);
    EXPECT_EQ(events.back(), Beauty(1, 1, 2, 3, 4));
}

TEST_F(ReportTest, DraggingEndsWithTheLastLevel) {
    constexpr int kMoves = 500;
    for (int level = 0; level < kMoves; ++level) {
        model_->SetBeautyEye(level);
    }
    EXPECT_EQ(Read(L"lumi_camera_beauty_eye"), Value(kMoves - 1));
    model_.reset();  // waits for the reports that run
    const std::vector<std::string> events = BeautyEvents(1);
    ASSERT_FALSE(events.empty());
    EXPECT_LE(events.size(), static_cast<std::size_t>(kMoves));
    EXPECT_THAT(events, testing::Contains(Beauty(0, 5, 5, kMoves - 1, 5)));
}

HANDLE WINAPI NoThread(LPSECURITY_ATTRIBUTES, SIZE_T, LPTHREAD_START_ROUTINE, LPVOID, DWORD, LPDWORD) {
    return nullptr;
}

TEST_F(ReportTest, WithoutAThreadABeautyChangeIsLoggedAndWritten) {
    Expect("no thread for the report(HomeService::StartBeautyReport)");
    const harness::ImportHook hook(nullptr, "CreateThread", &NoThread);
    model_->SetBeautySmooth(3);
    EXPECT_EQ(Read(L"lumi_camera_beauty_smooth"), Value(3));
}

}  // namespace
