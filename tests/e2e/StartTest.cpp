// Starting: the command line, the choice of the window, the single instance.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/e2e/support/Machine.h"
#include "tests/e2e/support/Program.h"

namespace e2e {
namespace {

using harness::Protocol::kWindowClass;
constexpr char kRefused[] = "[L3] enter cmdLine is wrong(wWinMain)";

class StartTest : public testing::Test {
  protected:
    void SetUp() override {
        Machine::Reset();
        ASSERT_EQ(CountWindows(kWindowClass), 0) << "a window of an earlier test is still open";
    }

    static void Install(std::optional<DWORD> driver, std::optional<DWORD> algorithm) {
        if (driver)
            Machine::SetNumber(L"filter_driver_install", *driver);
        if (algorithm)
            Machine::SetNumber(L"init_algorithm", *algorithm);
    }
};

class RefusedCommandLine : public StartTest, public testing::WithParamInterface<const wchar_t*> {};

TEST_P(RefusedCommandLine, EndsWithoutAWindow) {
    Install(1, 1);
    Program program(GetParam());
    EXPECT_EQ(program.WaitForEnd(), 0U);
    EXPECT_EQ(CountWindows(kWindowClass), 0);
    EXPECT_TRUE(Machine::LogHolds(kRefused));
    EXPECT_FALSE(Machine::LogHolds("[L3] enter cmdLine is empty(IsCmdLineEnable)"));
}

INSTANTIATE_TEST_SUITE_P(All, RefusedCommandLine,
                         testing::Values(L"", L"Run", L"RUN", L"run ", L"\"run\"", L"run run", L"-run", L"runs"));

struct Row {
    std::optional<DWORD> driver, algorithm;
    enum { kSettings, kBroken, kUnavailable } window;
};

class DecisionTable : public StartTest, public testing::WithParamInterface<Row> {};

TEST_P(DecisionTable, ShowsTheWindow) {
    const Row& row = GetParam();
    Install(row.driver, row.algorithm);
    Program program;
    ASSERT_TRUE(program.WaitForWindow());
    EXPECT_EQ(program.Find(L"minbtn").has_value(), row.window == Row::kSettings);
    const auto message = program.Find(L"msgbox_content");
    ASSERT_EQ(message.has_value(), row.window != Row::kSettings);
    if (message) {
        const bool broken = message->name.find(L"driver for the camera effects") != std::wstring::npos;
        const bool unavailable = message->name.find(L"Camera effects aren’t available") != std::wstring::npos;
        EXPECT_EQ(broken, row.window == Row::kBroken);
        EXPECT_EQ(unavailable, row.window == Row::kUnavailable);
    }
    program.Click(L"closebtn");
    EXPECT_EQ(program.WaitForEnd(), 0U);
}

INSTANTIATE_TEST_SUITE_P(All, DecisionTable,
                         testing::Values(Row{1, 1, Row::kSettings}, Row{1, std::nullopt, Row::kSettings},
                                         Row{1, 2, Row::kSettings}, Row{1, 0, Row::kUnavailable},
                                         Row{0, 1, Row::kBroken}, Row{0, 0, Row::kBroken}, Row{2, 1, Row::kBroken},
                                         Row{std::nullopt, 1, Row::kBroken}, Row{std::nullopt, 0, Row::kBroken},
                                         Row{std::nullopt, std::nullopt, Row::kBroken},
                                         Row{0xFFFFFFFF, 1, Row::kBroken}));

class SecondStart : public StartTest, public testing::WithParamInterface<bool> {};

TEST_P(SecondStart, RaisesTheFirstWindow) {
    const bool settings = GetParam();
    Install(settings ? 1 : 0, 1);
    Program first;
    const HWND window = first.WaitForWindow();
    ASSERT_TRUE(window);
    // Another program's window takes the front: a first window that never lost it would prove nothing.
    const HWND other = CreateWindowExW(WS_EX_TOOLWINDOW, L"STATIC", L"", WS_POPUP | WS_VISIBLE, 0, 0, 40, 40, nullptr,
                                       nullptr, nullptr, nullptr);
    ASSERT_TRUE(WaitUntil([&] {
        SetForegroundWindow(other);
        return GetForegroundWindow() == other;
    }));

    // What the registry says by now does not matter: both kinds of window have one class.
    Install(settings ? 0 : 1, 1);
    Program second;
    EXPECT_EQ(second.WaitForEnd(), 0U);
    EXPECT_TRUE(WaitUntil([&] { return GetForegroundWindow() == window; }));
    EXPECT_EQ(CountWindows(kWindowClass), 1);

    SendMessageW(window, WM_SYSCOMMAND, SC_MINIMIZE, 0);
    ASSERT_TRUE(WaitUntil([&] { return IsIconic(window) != FALSE; }));
    Program third;
    EXPECT_EQ(third.WaitForEnd(), 0U);
    EXPECT_TRUE(WaitUntil([&] { return !IsIconic(window) && GetForegroundWindow() == window; }));
    first.WaitForWindow();
    EXPECT_TRUE(first.Screenshot(settings ? L"raised-settings" : L"raised-message", 16));
    DestroyWindow(other);
    first.Click(L"closebtn");
    EXPECT_EQ(first.WaitForEnd(), 0U);
}

INSTANTIATE_TEST_SUITE_P(BothKinds, SecondStart, testing::Values(true, false));

TEST_F(StartTest, AnInstanceThatIsGoneDoesNotBlockTheNext) {
    Install(1, 1);
    {
        Program killed;
        ASSERT_TRUE(killed.WaitForWindow());
        // It owns the name by which a second start knows it.
        ASSERT_TRUE(suite::Handle(OpenMutexW(SYNCHRONIZE, FALSE, L"PixoraUIMutex")));
    }
    Program next;
    EXPECT_TRUE(next.WaitForWindow());
}

}  // namespace
}  // namespace e2e
