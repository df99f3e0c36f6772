#include "diagnostics/Options.h"

#include <gtest/gtest.h>

namespace diagnostics {
namespace {

TEST(DiagnosticsOptions, NothingShowsTheReport) {
    const auto options = ParseOptions({});
    ASSERT_TRUE(options);
    EXPECT_FALSE(options->help);
    EXPECT_EQ(options->outputFile, L"");
}

TEST(DiagnosticsOptions, AFileAndHelpAreUnderstood) {
    EXPECT_EQ(ParseOptions({L"--output", L"a b.txt"})->outputFile, L"a b.txt");
    EXPECT_TRUE(ParseOptions({L"--help"})->help);
}

TEST(DiagnosticsOptions, AnythingElseIsRefused) {
    using Words = std::vector<std::wstring>;
    for (const Words& words : {Words{L"--output"}, Words{L"--output", L""}, Words{L"report.txt"}, Words{L"-h"},
                               Words{L"--help", L"x"}, Words{L""}}) {
        EXPECT_FALSE(ParseOptions(words));
    }
}

}  // namespace
}  // namespace diagnostics
