#include "diagnostics/Report.h"

#include <gtest/gtest.h>

namespace diagnostics {
namespace {

TEST(DiagnosticsReport, AFineReportSaysSo) {
    Report report;
    report.Section("One");
    report.Fine("good");
    report.Note("known");
    EXPECT_EQ(report.WrongCount(), 0);
    EXPECT_EQ(report.Text(), "One\n  ok     good\n         known\n\nSummary\n  Nothing wrong was found.\n");
}

TEST(DiagnosticsReport, WhatIsWrongIsRepeatedAtTheEndWithItsRemedy) {
    Report report;
    report.Section("One");
    report.Wrong("bad", "Mend it.");
    report.Section("Two");
    report.Wrong("worse", "Buy another.");
    EXPECT_EQ(report.WrongCount(), 2);
    EXPECT_EQ(report.Text(),
              "One\n  WRONG  bad\n\nTwo\n  WRONG  worse\n\n"
              "Summary\n  1. bad\n    Mend it.\n  2. worse\n    Buy another.\n");
}

}  // namespace
}  // namespace diagnostics
