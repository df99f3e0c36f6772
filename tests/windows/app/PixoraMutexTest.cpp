// The guard of the single instance: what it answers, logs and keeps.
#include "app/PixoraMutex.h"

#include <gmock/gmock.h>

#include <thread>

#include "suite/common/Handle.h"
#include "tests/support/ImportHook.h"
#include "tests/support/TestLog.h"

namespace {

using harness::ImportHook;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr wchar_t kName[] = L"PixoraUIMutex";
constexpr char kFunction[] = "PixoraMutex::IsAlreadyRunning";

bool IsNameTaken() {
    return static_cast<bool>(suite::Handle(OpenMutexW(SYNCHRONIZE, FALSE, kName)));
}

// What a mutex that somebody else made answers to another thread.
bool CanBeHad() {
    bool had = false;
    std::thread([&had] {
        const suite::Handle mutex(OpenMutexW(SYNCHRONIZE, FALSE, kName));
        had = WaitForSingleObject(mutex.Get(), 0) == WAIT_OBJECT_0;
    }).join();
    return had;
}

// It says so; the handle must not keep the name for the tests that follow.
BOOL WINAPI RefuseToClose(HANDLE handle) {
    DuplicateHandle(GetCurrentProcess(), handle, nullptr, nullptr, 0, FALSE, DUPLICATE_CLOSE_SOURCE);
    SetLastError(ERROR_INVALID_HANDLE);
    return FALSE;
}

// In this order, for the guard is one for the process and stays its owner: the last test is the first start's.
TEST(PixoraMutexTest, AnotherInstancesGuardIsSeenAndLetGo) {
    {
        const suite::Handle others(CreateMutexW(nullptr, FALSE, kName));
        ASSERT_TRUE(others);
        EXPECT_TRUE(PixoraMutex::GetInstance().IsAlreadyRunning());
    }
    EXPECT_FALSE(IsNameTaken()) << "its handle was kept";
    EXPECT_THAT(harness::TestLog::Lines(), IsEmpty());
}

TEST(PixoraMutexTest, AHandleThatCannotBeClosedIsLogged) {
    const suite::Handle others(CreateMutexW(nullptr, FALSE, kName));
    {
        const ImportHook close(nullptr, "CloseHandle", &RefuseToClose);
        EXPECT_TRUE(PixoraMutex::GetInstance().IsAlreadyRunning());
    }
    EXPECT_THAT(harness::TestLog::LinesOf(kFunction),
                ElementsAre("[L3] CloseHandle exist error: 6(PixoraMutex::IsAlreadyRunning)"));
}

// Something else of that name: it cannot be opened as a mutex, nor be made as one.
TEST(PixoraMutexTest, AGuardThatCannotBeMadeCountsAsAnotherInstance) {
    const suite::Handle event(CreateEventW(nullptr, FALSE, FALSE, kName));
    ASSERT_TRUE(event);
    EXPECT_TRUE(PixoraMutex::GetInstance().IsAlreadyRunning());
    EXPECT_THAT(harness::TestLog::LinesOf(kFunction),
                ElementsAre("[L3] Create PixoraUIMutex error: 6(PixoraMutex::IsAlreadyRunning)",
                            "[L3] CloseHandle error: 6(PixoraMutex::IsAlreadyRunning)"));
}

// A start that makes the guard between this one's look and its own try; the handle is forgotten and never closed.
HANDLE WINAPI MakeAfterAnother(LPSECURITY_ATTRIBUTES, BOOL, LPCWSTR) {
    const HANDLE handle = CreateEventW(nullptr, FALSE, FALSE, L"the handle that stays");
    SetLastError(ERROR_ALREADY_EXISTS);
    return handle;
}

TEST(PixoraMutexTest, AConcurrentStartWins) {
    {
        const ImportHook create(nullptr, "CreateMutexW", &MakeAfterAnother);
        EXPECT_TRUE(PixoraMutex::GetInstance().IsAlreadyRunning());
    }
    EXPECT_TRUE(suite::Handle(OpenEventW(SYNCHRONIZE, FALSE, L"the handle that stays")));
    EXPECT_THAT(harness::TestLog::LinesOf(kFunction),
                ElementsAre("[L3] Create PixoraUIMutex error: 183(PixoraMutex::IsAlreadyRunning)",
                            "[L3] CloseHandle error: 6(PixoraMutex::IsAlreadyRunning)"));
}

HANDLE g_made = nullptr;
HANDLE WINAPI MakeWithoutAWord(LPSECURITY_ATTRIBUTES, BOOL, LPCWSTR) {
    return g_made;
}

TEST(PixoraMutexTest, AnErrorFromBeforeDoesNotCount) {
    const suite::Handle event(CreateEventW(nullptr, FALSE, FALSE, nullptr));
    g_made = event.Get();
    const ImportHook hook(nullptr, "CreateMutexW", &MakeWithoutAWord);
    EXPECT_FALSE(PixoraMutex::GetInstance().IsAlreadyRunning());
}

TEST(PixoraMutexTest, TheFirstStartOwnsTheGuardForItsLife) {
    ASSERT_FALSE(IsNameTaken());
    // A last error of somebody else's is none of the guard's.
    SetLastError(ERROR_INVALID_HANDLE);
    EXPECT_FALSE(PixoraMutex::GetInstance().IsAlreadyRunning());
    EXPECT_TRUE(IsNameTaken());
    EXPECT_FALSE(CanBeHad()) << "made, and not owned";
    EXPECT_THAT(harness::TestLog::Lines(), IsEmpty());
}

}  // namespace
