// The move out of the older layout is tried again when the shared folder cannot be listed, three times in a start.
#include "tests/support/ImportHook.h"
#include "tests/windows/service/OwnBackgrounds.h"

namespace {

// How many of the first looks at the shared folder fail, and how many there were.
int g_failures = 0;
int g_looks = 0;
const harness::ImportHook* g_find = nullptr;

HANDLE WINAPI Find(LPCWSTR pattern, LPWIN32_FIND_DATAW found) {
    if (wcscmp(pattern, L"C:\\ProgramData\\Comms\\LumiCamera\\*") == 0 && ++g_looks <= g_failures) {
        SetLastError(ERROR_SHARING_VIOLATION);
        return INVALID_HANDLE_VALUE;
    }
    return g_find->Original<decltype(&FindFirstFileW)>()(pattern, found);
}

class OwnMoveTest : public OwnBackgroundsTest {
  protected:
    int LooksOfAStart(int failures) {
        const harness::ImportHook find(nullptr, "FindFirstFileW", &Find);
        g_find = &find;
        g_failures = failures;
        g_looks = 0;
        Start();
        return g_looks;
    }
};

TEST_F(OwnMoveTest, TheThirdAttemptCounts) {
    EXPECT_EQ(LooksOfAStart(2), 3);
    EXPECT_EQ(Number(L"sync_custom"), 1);
    EXPECT_EQ(LooksOfAStart(0), 0) << "moved once and for all";
}

TEST_F(OwnMoveTest, AfterThreeTheNextStartTriesAgain) {
    EXPECT_EQ(LooksOfAStart(99), 3);
    EXPECT_EQ(Number(L"sync_custom"), 0);
    EXPECT_EQ(LooksOfAStart(0), 1) << "the first success ends it";
    EXPECT_EQ(Number(L"sync_custom"), 1);
}

}  // namespace
