// Tests that HarnessTest runs one by one, most of which the listener has to fail. No part of a test run.
#include <gmock/gmock.h>

#include <cstdlib>
#include <fstream>

#include "suite/logger/QxLogger.h"
#include "tests/support/Harness.h"
#include "tests/support/TestLog.h"

namespace {

using harness::TestLog::Allow;
using harness::TestLog::Expect;
using harness::TestLog::TakeFailures;

void Fail() {
    LogLine(4, L"Child::Fail", L"broken");
}

// As a program does that the test has started.
void WriteLogOf(const char* program, const char* line) {
    const auto folder = harness::LocalDataFolder() / "Velmora" / "Quillon" / "Logs";
    std::ofstream(folder / (std::string(program) + ".log"), std::ios::app | std::ios::binary) << line << "\n";
}

TEST(Child, Silent) {
    LogLine(3, L"Child::Tell", L"all is well");
}

TEST(Child, Unannounced) {
    Fail();
}

TEST(Child, Announced) {
    Expect("[L4] broken(Child::Fail)");
    Fail();
}

TEST(Child, AnnouncedAfterwards) {
    Fail();
    Expect(testing::HasSubstr("broken"));
}

TEST(Child, AnnouncedAnotherLine) {
    Expect("[L4] broken(Child::Fail)");
    Fail();
    LogLine(4, L"Child::Fail", L"broken otherwise");
}

TEST(Child, AllowedAndMissing) {
    Allow(testing::HasSubstr("broken"));
}

TEST(Child, Taken) {
    Fail();
    EXPECT_THAT(TakeFailures(), testing::ElementsAre("broken(Child::Fail)"));
    EXPECT_THAT(TakeFailures(), testing::IsEmpty());
}

TEST(Child, FailsAfterItTook) {
    TakeFailures();
    Fail();
}

TEST(Child, OfAnotherProgram) {
    WriteLogOf("Other", "2026-11-21 10:15:30.123 [L4] [12] broken elsewhere(Other::Run)");
}

TEST(Child, HigherLevel) {
    LogLine(5, L"Child::Fail", L"worse");
}

TEST(Child, NoLineOfALog) {
    WriteLogOf("Other", "Segmentation fault");
}

class SuiteEnd : public testing::Test {
  protected:
    static void TearDownTestSuite() { Fail(); }
};

TEST_F(SuiteEnd, Silent) {}

class SuiteBegin : public testing::Test {
  protected:
    static void SetUpTestSuite() { Fail(); }
};

TEST_F(SuiteBegin, Silent) {}

class Destructor : public testing::Test {
  protected:
    ~Destructor() override { Fail(); }
};

TEST_F(Destructor, Silent) {}

// Announcements end with their test.
TEST(Neighbours, First) {
    Expect("[L4] broken(Child::Fail)");
    Fail();
}
TEST(Neighbours, Second) {
    Fail();
}

class Last : public testing::Environment {
    void TearDown() override {
        if (std::getenv("PIXORA_FAIL_AT_THE_END")) {
            Fail();
        }
    }
};
[[maybe_unused]] testing::Environment* const g_last = testing::AddGlobalTestEnvironment(new Last);

}  // namespace
