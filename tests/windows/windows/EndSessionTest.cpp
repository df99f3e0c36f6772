// What both kinds of top-level window do when the Windows session ends: log and usage events are written out before the
// message is answered.
#include <windows.h>

#include <atomic>
#include <fstream>
#include <string>

#include "suite/logger/QxLogger.h"
#include "suite/report/EventDataReport.h"
#include "tests/support/Harness.h"
#include "tests/support/ImportHook.h"
#include "tests/windows/support/LockHolder.h"
#include "tests/windows/windows/WindowTests.h"
#include "windows/PxDialogWnd.h"

namespace {

using harness::ImportHook;

std::string Content(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

std::filesystem::path SpoolPath() {
    return harness::LocalDataFolder() / L"Velmora" / L"Quillon" / L"Report" / L"events.jsonl";
}

// Another program was stopped while it wrote: a line and an event wait.
struct WaitingTexts {
    explicit WaitingTexts(const std::string& name) : line("line " + name), event("event " + name) {
        LogLine(LogLevel::kInfo, L"EndSessionTest", line.c_str());
        std::string message;
        EXPECT_TRUE(EventDataReport::Instance().GetMsg(message, "7", event));
        EXPECT_TRUE(EventDataReport::Instance().SendMsg(message));
    }

    const LockHolder log{QxLogger::GetInstance()->FilePath()};
    const LockHolder spool{SpoolPath()};
    const std::string line;
    const std::string event;
};

// Waits of the test's thread for what the two libraries write, while it lives.
class Sleeps {
  public:
    Sleeps()
        : log_(GetModuleHandleW(L"QxLogger.dll"), "SleepConditionVariableSRW", &Sleep),
          spool_(GetModuleHandleW(L"QxReport.dll"), "SleepConditionVariableSRW", &Sleep) {
        thread = GetCurrentThreadId();
        count = 0;
    }
    static int Count() { return count; }

  private:
    static BOOL WINAPI Sleep(CONDITION_VARIABLE* variable, SRWLOCK* lock, DWORD ms, ULONG flags) {
        count += GetCurrentThreadId() == thread;
        return SleepConditionVariableSRW(variable, lock, ms, flags);
    }

    static inline DWORD thread = 0;
    static inline std::atomic<int> count = 0;

    const ImportHook log_;
    const ImportHook spool_;
};

class EndSessionTest : public MainWindowTest {};

TEST_F(EndSessionTest, TheSettingsWindowWritesOutWhatWaits) {
    PassedOnMessages passedOn(Manager());
    const WaitingTexts waiting("settings");
    SendMessageW(Window().GetHWND(), WM_ENDSESSION, TRUE, 0);
    EXPECT_THAT(Content(QxLogger::GetInstance()->FilePath()), testing::HasSubstr(waiting.line));
    EXPECT_THAT(Content(SpoolPath()), testing::HasSubstr(waiting.event));
    EXPECT_EQ(passedOn.Count(WM_ENDSESSION), 1);
}

TEST_F(EndSessionTest, TheMessageWindowDoesToo) {
    PxDialogWnd dialog;
    dialog.Run(GetModuleHandleW(nullptr));
    PassedOnMessages passedOn(dialog.PaintManager());
    const WaitingTexts waiting("message");
    SendMessageW(dialog.GetHWND(), WM_ENDSESSION, TRUE, 0);
    EXPECT_THAT(Content(QxLogger::GetInstance()->FilePath()), testing::HasSubstr(waiting.line));
    EXPECT_THAT(Content(SpoolPath()), testing::HasSubstr(waiting.event));
    EXPECT_EQ(passedOn.Count(WM_ENDSESSION), 1);
}

TEST_F(EndSessionTest, ASessionThatGoesOnIsNotWaitedFor) {
    const WaitingTexts waiting("goes on");
    const Sleeps sleeps;
    SendMessageW(Window().GetHWND(), WM_ENDSESSION, FALSE, 0);
    EXPECT_EQ(sleeps.Count(), 0);
}

}  // namespace
