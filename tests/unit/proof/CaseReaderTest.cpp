#include "tools/proof/CaseReader.h"

#include <gmock/gmock.h>

namespace proof {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;

constexpr char kOutput[] =
    "[==========] Running 4 tests from 1 test suite.\r\n"
    "[ RUN      ] Suite.Fine\r\nnoise\r\n[       OK ] Suite.Fine (3 ms)\r\n"
    "[ RUN      ] Suite.Bad\r\nfile.cpp:12: Failure\r\nExpected: 1\r\n[  FAILED  ] Suite.Bad (4 ms)\r\n"
    "[ RUN      ] All/Suite.Of/0\r\nfile.cpp:20: Skipped\r\nnot here\r\n"
    "[  SKIPPED ] All/Suite.Of/0, where GetParam() = 5 (0 ms)\r\n"
    "[ RUN      ] Suite.Last\r\n[       OK ] Suite.Last (1 ms)\r\n"
    "[  FAILED  ] 1 test, listed below:\r\n[  FAILED  ] Suite.Bad\r\n";

TEST(CaseReader, TellsEachCase) {
    const std::vector<Case> cases = ReadCases("program", kOutput, {Ending::How::kByItself, 1});
    ASSERT_THAT(cases, SizeIs(4));
    EXPECT_EQ(cases[0].name, "Suite.Fine");
    EXPECT_EQ(cases[0].result, Result::kPassed);
    EXPECT_THAT(cases[0].text, IsEmpty());
    EXPECT_EQ(cases[1].name, "Suite.Bad");
    EXPECT_EQ(cases[1].result, Result::kFailed);
    EXPECT_EQ(cases[1].text, "file.cpp:12: Failure\nExpected: 1\n");
    EXPECT_EQ(cases[2].name, "All/Suite.Of/0");
    EXPECT_EQ(cases[2].result, Result::kSkipped);
    EXPECT_EQ(cases[2].text, "file.cpp:20: Skipped\nnot here\n");
    EXPECT_EQ(cases[3].result, Result::kPassed);
}

TEST(CaseReader, WhatATestPrintsEndsNoCase) {
    const std::vector<Case> cases = ReadCases(
        "program",
        "[ RUN      ] A.B\n[       OK ] A.C (1 ms)\n[  FAILED  ] A.B\n[ RUN      ] A.D\n[       OK ] A.B (2 ms)\n",
        {Ending::How::kByItself, 0});
    ASSERT_THAT(cases, SizeIs(1));
    EXPECT_EQ(cases[0].result, Result::kPassed);
}

TEST(CaseReader, ACaseThatNeverEndsHasFailed) {
    const std::vector<Case> cases =
        ReadCases("program", "[ RUN      ] Suite.Crash\nlast words\n", {Ending::How::kByItself, 0xC0000005});
    ASSERT_THAT(cases, SizeIs(1));
    EXPECT_EQ(cases[0].name, "Suite.Crash");
    EXPECT_EQ(cases[0].result, Result::kFailed);
    EXPECT_EQ(cases[0].text, "last words\nit ended with code 3221225477 (0xC0000005)\n");
    const auto late = ReadCases("program", "[ RUN      ] Suite.Slow\n", {Ending::How::kTooLong, 0});
    ASSERT_THAT(late, SizeIs(1));
    EXPECT_EQ(late[0].text, "it did not end in time, and was ended\n");
    const auto stopped = ReadCases("program", "[ RUN      ] Suite.Slow\n", {Ending::How::kStopped, 0});
    ASSERT_THAT(stopped, SizeIs(1));
    EXPECT_EQ(stopped[0].text, "it was stopped\n");
}

TEST(CaseReader, AnEndingThatNoCaseExplainsIsAFailure) {
    const auto cases = ReadCases("program", "[ RUN      ] A.B\n[       OK ] A.B (1 ms)\nthe log says more\n",
                                 {Ending::How::kByItself, 1});
    ASSERT_THAT(cases, SizeIs(2));
    EXPECT_EQ(cases[1].name, "program");
    EXPECT_EQ(cases[1].result, Result::kFailed);
    EXPECT_EQ(cases[1].text, "the log says more\nit ended with code 1 (0x00000001)\n");
    const auto none = ReadCases("program", "", {Ending::How::kNotStarted, 2});
    ASSERT_THAT(none, SizeIs(1));
    EXPECT_EQ(none[0].result, Result::kFailed);
    EXPECT_EQ(none[0].text, "it could not be started: error 2\n");
    // All cases are passed, but the program had to be ended.
    const auto late = ReadCases("program", "[ RUN      ] A.B\n[       OK ] A.B (1 ms)\n", {Ending::How::kTooLong, 0});
    ASSERT_THAT(late, SizeIs(2));
    EXPECT_EQ(late[1].result, Result::kFailed);
}

TEST(CaseReader, AProgramWithoutCasesIsOne) {
    const auto cases = ReadCases("fuzz", "300 runs\n", {Ending::How::kByItself, 0});
    ASSERT_THAT(cases, SizeIs(1));
    EXPECT_EQ(cases[0].name, "fuzz");
    EXPECT_EQ(cases[0].result, Result::kPassed);
    EXPECT_THAT(cases[0].text, IsEmpty());
}

TEST(CaseReader, OfALongTextTheEndIsKept) {
    const auto cases =
        ReadCases("program", "[ RUN      ] A.B\n" + std::string(30'000, 'x') + "\nreason\n[  FAILED  ] A.B (1 ms)\n",
                  {Ending::How::kByItself, 1});
    ASSERT_THAT(cases, SizeIs(1));
    EXPECT_THAT(cases[0].text, StartsWith("…\nxx"));
    EXPECT_THAT(cases[0].text, HasSubstr("x\nreason\n"));
    EXPECT_EQ(cases[0].text.size(), 20'000U + std::string("…\n").size());
}

}  // namespace
}  // namespace proof
