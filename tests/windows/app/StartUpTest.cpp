// The gate of the command line, and the starts that end before there is a window.
#include "app/StartUp.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <new>

#include "tests/support/ImportHook.h"
#include "tests/support/PrivateRegistry.h"
#include "tests/support/SettingsKey.h"
#include "tests/support/TestLog.h"
#include "tests/windows/app/FakeSuite.h"

namespace {

using harness::ImportHook;
using harness::TestLog::Lines;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr char kWrong[] = "[L3] enter cmdLine is wrong(wWinMain)";

bool g_noMemory = false;  // for objects whose maker asks whether there is any

wchar_t g_commandLine[32] = L"";
LPWSTR WINAPI WholeCommandLine() {
    return g_commandLine;
}

void SetCommandLine(const wchar_t* text) {
    wcscpy(g_commandLine, text);
}

}  // namespace

// Not inlined: the compiler would see memory of malloc in the hands of delete.
[[gnu::noinline]] void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return g_noMemory ? nullptr : std::malloc(size);
}

[[gnu::noinline]] void operator delete(void* memory) noexcept {
    std::free(memory);
}
[[gnu::noinline]] void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}
[[gnu::noinline]] void* operator new(std::size_t size) {
    if (void* const memory = std::malloc(size > 0 ? size : 1)) {
        return memory;
    }
    throw std::bad_alloc();
}

namespace {

TEST(CommandLineGate, IsOpenForOneWordOnly) {
    const ImportHook whole(nullptr, "GetCommandLineW", &WholeCommandLine);
    SetCommandLine(L"\"C:\\Pixora.exe\" run");
    EXPECT_TRUE(IsCmdLineEnable(L"run"));
    for (const wchar_t* text : {L"Run", L"run ", L" run", L"runs", L"\"run\"", L"-run", L""}) {
        EXPECT_FALSE(IsCmdLineEnable(text));
    }
    EXPECT_THAT(Lines(), IsEmpty());
}

TEST(CommandLineGate, WithoutArgumentsTheWholeCommandLineCounts) {
    const ImportHook whole(nullptr, "GetCommandLineW", &WholeCommandLine);
    SetCommandLine(L"run");
    EXPECT_TRUE(IsCmdLineEnable(L""));
    EXPECT_THAT(Lines(), IsEmpty());
    SetCommandLine(L"");
    EXPECT_FALSE(IsCmdLineEnable(L""));
    EXPECT_THAT(Lines(), ElementsAre("[L3] enter cmdLine is empty(IsCmdLineEnable)"));
}

TEST(StartUpTest, AWrongCommandLineEndsItAfterTheCrashHandler) {
    FakeSuite suite;
    StartUp(nullptr, L"Run");
    EXPECT_THAT(Lines(), ElementsAre(kWrong));
    const auto record = suite.TakeRecord();
    ASSERT_TRUE(record);
    EXPECT_EQ(record->enableFlag, 1);
    EXPECT_EQ(record->secondFlag, 0);
    EXPECT_EQ(record->reserved, 0);
    EXPECT_EQ(record->mode, 0);
    EXPECT_EQ(record->appName, L"QUILLON");
    EXPECT_EQ(record->productName, L"QUILLON");

    StartUp(nullptr, nullptr);
    EXPECT_THAT(Lines(), ElementsAre(kWrong, kWrong));
    EXPECT_FALSE(suite.TakeRecord()) << "once for the process";
}

std::vector<std::pair<std::wstring, DWORD>> g_restarts;
HRESULT WINAPI NoteRestart(PCWSTR commandLine, DWORD flags) {
    g_restarts.emplace_back(commandLine, flags);
    return S_OK;
}

TEST(StartUpTest, AnUpdateThatClosesItStartsItAgain) {
    const harness::PrivateRegistry registry;
    FakeSuite suite;
    harness::SettingsKey::SetInstalled();
    const ImportHook restart(nullptr, "RegisterApplicationRestart", &NoteRestart);
    StartUp(nullptr, L"Run");
    EXPECT_THAT(g_restarts, IsEmpty());
    g_noMemory = true;
    StartUp(nullptr, L"run");
    g_noMemory = false;
    EXPECT_THAT(g_restarts, ElementsAre(testing::Pair(L"run", DWORD{RESTART_NO_CRASH | RESTART_NO_HANG})));
}

TEST(StartUpTest, WithoutMemoryForItsWindowItEnds) {
    const harness::PrivateRegistry registry;
    FakeSuite suite;
    harness::SettingsKey::SetInstalled();
    g_noMemory = true;
    StartUp(nullptr, L"run");
    g_noMemory = false;
    EXPECT_THAT(Lines(), ElementsAre("[L3] creat PxMainWnd is wrong(wWinMain)"));
}

TEST(StartUpTest, WithoutMemoryForItsMessageItEnds) {
    const harness::PrivateRegistry registry;
    FakeSuite suite;
    g_noMemory = true;
    StartUp(nullptr, L"run");
    g_noMemory = false;
    EXPECT_THAT(Lines(), ElementsAre("[L3] creat PxDialog is wrong(wWinMain)"));
}

}  // namespace
