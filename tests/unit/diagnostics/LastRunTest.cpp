#include "diagnostics/LastRun.h"

#include <gtest/gtest.h>

namespace diagnostics {
namespace {

constexpr char kStart[] = " [L3] [388] SetProcessDpiAwareness fail, error code: -2147024891(PxMainWnd::DPIAware)";
constexpr char kLost[] = " [L3] [388] the graphics device is lost(LivePreview::RecoverDevice)";
constexpr char kBack[] = " [L3] [388] the graphics device is back(LivePreview::RecoverDevice)";

std::string TextOf(const std::vector<std::string>& lines) {
    LastRun run;
    for (const std::string& line : lines) {
        run.Add(line);
    }
    return run.Text();
}

TEST(LastRun, CountsSinceTheLastStart) {
    const std::string day = "2026-11-21 ";
    EXPECT_EQ(TextOf({day + "10:00:00.000" + kStart, day + "10:00:01.000" + kLost, day + "11:00:00.123" + kStart,
                      day + "11:00:02.000" + kLost, day + "11:00:03.000" + kBack, day + "11:00:04.000" + kLost}),
              "graphics device lost: 2 times, back: 1 times, in the last run, since 2026-11-21 11:00:00");
    EXPECT_EQ(TextOf({day + "10:00:01.000" + kLost, day + "11:00:00.123" + kStart}),
              "graphics device lost: 0 times, back: 0 times, in the last run, since 2026-11-21 11:00:00");
}

TEST(LastRun, WithoutAStartAllOfTheLogCounts) {
    EXPECT_EQ(TextOf({std::string("2026-11-21 10:00:01.000") + kLost, std::string("2026-11-21 10:00:02.000") + kLost}),
              "graphics device lost: 2 times, back: 0 times, in the last run, since 2026-11-21 10:00:01");
}

TEST(LastRun, OtherLinesAreNotCounted) {
    EXPECT_EQ(TextOf({"2026-11-21 10:00:01.000 [L3] [1] Click Set Camera State btnName:the graphics device is lost"}),
              "graphics device lost: 0 times, back: 0 times, in the last run, since 2026-11-21 10:00:01");
    EXPECT_EQ(TextOf({}), "graphics device lost: no run is known");
}

}  // namespace
}  // namespace diagnostics
