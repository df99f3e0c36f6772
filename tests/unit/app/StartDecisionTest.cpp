#include "app/StartDecision.h"

#include <gtest/gtest.h>

#include <climits>

namespace {

TEST(StartDecision, NothingReadableMeansTheDriverIsMissing) {
    EXPECT_EQ(ChooseStartWindow({}), StartWindow::kDriverBrokenMessage);
}

TEST(StartDecision, OnlyADriverValueOfOneCounts) {
    for (const int driver : {0, 2, -1, 10, INT_MIN, INT_MAX}) {
        for (const int algorithm : {0, 1, 2, -1})
            EXPECT_EQ(ChooseStartWindow({driver, algorithm}), StartWindow::kDriverBrokenMessage) << driver;
    }
}

TEST(StartDecision, OnlyAnAlgorithmValueOfZeroCounts) {
    EXPECT_EQ(ChooseStartWindow({1, 0}), StartWindow::kFunctionUnavailableMessage);
    for (const int algorithm : {1, 2, -1, INT_MIN, INT_MAX})
        EXPECT_EQ(ChooseStartWindow({1, algorithm}), StartWindow::kSettings) << algorithm;
}

TEST(StartDecision, AnAlgorithmThatNobodyComplainedOfIsFine) {
    StartSettings settings;
    settings.filterDriverInstall = 1;
    EXPECT_EQ(ChooseStartWindow(settings), StartWindow::kSettings);
}

TEST(StartDecision, TheOneCommand) {
    EXPECT_TRUE(IsRunCommand(L"run"));
}

TEST(StartDecision, NotACharacterMoreOrLessOrDifferent) {
    const std::wstring withNul(L"run\0", 4);
    for (const std::wstring& command :
         {std::wstring(), std::wstring(L" run"), std::wstring(L"run "), std::wstring(L"Run"), std::wstring(L"RUN"),
          std::wstring(L"ru"), std::wstring(L"runs"), std::wstring(L"\"run\""), std::wstring(L"run\t"),
          std::wstring(L"-run"), std::wstring(L"C:\\Pixora.exe run"), withNul}) {
        EXPECT_FALSE(IsRunCommand(command)) << std::string(command.begin(), command.end());
    }
}

}  // namespace
