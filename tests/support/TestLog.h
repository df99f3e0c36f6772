#pragma once
// What the running test has caused in the logs: of its own program and of every program that it started.
//
// A line of level 4 that the test has not announced fails it, and so does an announced line that does not come. Lines
// between tests count for the test suite or for the whole program. The listener that RunTests installs does that for
// every test; nothing has to be called for it. Thread: any.
#include <gmock/gmock.h>

#include <chrono>
#include <filesystem>
#include <string>
#include <vector>

#include "tests/support/LogReader.h"
#include "tests/support/Wait.h"

namespace harness::TestLog {

// Looks at lines in the form "[L4] message(Class::Function)".
using LineMatcher = testing::Matcher<const std::string&>;

// --- announcing; until the test's end. A plain text is a whole line.
// Such lines come in this test, one at least.
void Expect(const LineMatcher& line);
// Such lines may come: whether they do depends on what is faster.
void Allow(const LineMatcher& line);
// The lines of level 4 since the last call that were not announced, without their level; the test looks at them itself.
std::vector<std::string> TakeFailures();

// --- looking: lines since the test began, or since StartOver, oldest first
std::vector<std::string> Lines(const std::string& program = {});  // empty: this one
// Those that end with "(function)".
std::vector<std::string> LinesOf(const std::string& function, const std::string& program = {});
int Count(const LineMatcher& line, const std::string& program = {});
// Waits for such a line; no message of this thread runs.
bool WaitFor(const LineMatcher& line, const std::string& program = {});
void StartOver();

// --- more folders of logs than the program's own
void Watch(const std::filesystem::path& folder);
// Before the folder is removed.
void Unwatch(const std::filesystem::path& folder);

// --- for the listener
// The lines of every program since the test began, each with the program's name.
std::vector<std::string> Everything();
// Fails the running test, test suite or program for each line that should not be there.
void JudgeLines();
// JudgeLines, and forgets the lines.
void BeginTest();
// JudgeLines, fails the test for each line that was announced and is missing, and forgets what was announced.
void EndTest(std::chrono::milliseconds patience = kPatience);

}  // namespace harness::TestLog
