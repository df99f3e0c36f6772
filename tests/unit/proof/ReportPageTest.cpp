#include "tools/proof/ReportPage.h"

#include <gmock/gmock.h>

namespace proof {
namespace {

using testing::HasSubstr;
using testing::Not;

Report Sample() {
    Report report;
    report.version = "1.2.3";
    report.begun = "2026-11-22 10:15";
    report.seconds = 754;
    report.results = {
        {"app_test", 59, {{"A.One", Result::kPassed, ""}, {"A.Two", Result::kFailed, "Expected: \"<1>\" & 2\n"}}},
        {"ipc_test", 60, {{"B.One", Result::kPassed, ""}, {"B.Two", Result::kSkipped, "not here\n"}}}};
    report.without = {{"package_made", "it is a script"}};
    report.steps = {{"1. Look.", "a <b>picture</b>"}};
    report.pictures = {"settings.png"};
    report.diagnostics = "ok     <all>";
    return report;
}

// What stands between two headings.
std::string Part(const std::string& page, const std::string& heading) {
    const std::size_t start = page.find("<h2>" + heading + "</h2>");
    return start == std::string::npos ? "" : page.substr(start, page.find("<h2>", start + 1) - start);
}

TEST(ReportPage, CountsTheCases) {
    const Counts counts = Count(Sample().results);
    EXPECT_EQ(counts.passed, 2);
    EXPECT_EQ(counts.failed, 1);
    EXPECT_EQ(counts.skipped, 1);
}

TEST(ReportPage, BeginsWithTheCounts) {
    const std::string page = MakePage(Sample());
    EXPECT_THAT(page, HasSubstr("<meta charset=\"utf-8\">"));
    EXPECT_THAT(page, HasSubstr("<h1>Pixora 1.2.3 on this PC</h1>\n<p><b>2 passed, 1 failed, 1 skipped</b>; begun "
                                "2026-11-22 10:15, 12 min 34 s.</p>"));
    EXPECT_THAT(page, Not(HasSubstr("stopped before")));
    EXPECT_THAT(page, HasSubstr("Paths in this page may hold your user name."));
}

TEST(ReportPage, TellsFailedAndSkippedCasesWithTheirReasons) {
    const std::string page = MakePage(Sample());
    EXPECT_EQ(Part(page, "Failed"),
              "<h2>Failed</h2>\n<h3>app_test: A.Two</h3>\n<pre>Expected: &quot;&lt;1&gt;&quot; &amp; 2\n</pre>\n");
    EXPECT_EQ(Part(page, "Skipped"), "<h2>Skipped</h2>\n<h3>ipc_test: B.Two</h3>\n<pre>not here\n</pre>\n");
    Report fine = Sample();
    fine.results = {{"app_test", 1, {{"A.One", Result::kPassed, ""}}}};
    EXPECT_EQ(Part(MakePage(fine), "Failed"), "<h2>Failed</h2>\n<p>None.</p>\n");
}

TEST(ReportPage, ListsTheProgramsAndWhatIsMissing) {
    const std::string page = MakePage(Sample());
    const std::string programs = Part(page, "Programs");
    EXPECT_THAT(programs, HasSubstr("<tr class=\"failed\"><td>app_test</td><td>1 passed, 1 failed, 0 skipped</td>"
                                    "<td>59 s</td></tr>"));
    EXPECT_THAT(programs, HasSubstr("<tr class=\"passed\"><td>ipc_test</td><td>1 passed, 0 failed, 1 skipped</td>"
                                    "<td>1 min 0 s</td></tr>"));
    EXPECT_THAT(Part(page, "Not in this package"), HasSubstr("<li>package_made: it is a script</li>"));
}

TEST(ReportPage, StepsHaveABoxToTickAndRoomForANote) {
    EXPECT_THAT(Part(MakePage(Sample()), "A quarter of an hour at this PC"),
                HasSubstr("<tr><td><input type=\"checkbox\" oninput=\"this.toggleAttribute('checked',this.checked)\">"
                          "</td><td>1. Look.</td><td>a &lt;b&gt;picture&lt;/b&gt;</td><td><textarea "
                          "oninput=\"this.textContent=this.value\"></textarea></td></tr>"));
}

TEST(ReportPage, ShowsPicturesAndTheDiagnostics) {
    const std::string page = MakePage(Sample());
    EXPECT_THAT(Part(page, "Screenshots"),
                HasSubstr("<a href=\"screenshots/settings.png\"><img loading=\"lazy\" alt=\"\" "
                          "src=\"screenshots/settings.png\"></a><figcaption>settings.png</figcaption>"));
    EXPECT_EQ(Part(page, "Diagnostics"), "<h2>Diagnostics</h2>\n<pre>ok     &lt;all&gt;</pre>\n");
    Report without = Sample();
    without.pictures.clear();
    EXPECT_THAT(Part(MakePage(without), "Screenshots"), HasSubstr("None were made."));
}

TEST(ReportPage, SaysWhatWentWrongWithTheRun) {
    Report report = Sample();
    report.isWhole = false;
    report.remarks = {"The registry & more"};
    const std::string page = MakePage(report);
    EXPECT_THAT(page, HasSubstr("<p class=\"failed\">The run was stopped before its last test.</p>"));
    EXPECT_THAT(page, HasSubstr("<p class=\"failed\">The registry &amp; more</p>"));
}

}  // namespace
}  // namespace proof
