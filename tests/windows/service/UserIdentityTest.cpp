// Whose backgrounds they are: what is asked of the system for it, and what is not.
#include "service/UserIdentity.h"

#include <windows.h>

#include <gtest/gtest.h>
#include <sddl.h>
#include <wtsapi32.h>

#include <cstring>

#include "suite/common/UserSid.h"
#include "tests/support/FoundFunction.h"
#include "tests/support/ImportHook.h"
#include "tests/windows/service/RefusedCall.h"

namespace {

constexpr wchar_t kSessionsUser[] = L"S-1-5-21-5-6-7-1008";

// By the rules of Windows: only services are given a session's token.
BOOL WINAPI Refuse(ULONG, HANDLE*) {
    SetLastError(ERROR_PRIVILEGE_NOT_HELD);
    return FALSE;
}

BOOL WINAPI Give(ULONG, HANDLE* token) {
    return OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, token);
}

// The session's token says another user than the program's own, which is not asked then.
BOOL WINAPI TellUser(HANDLE, TOKEN_INFORMATION_CLASS kind, void* out, DWORD size, DWORD* needed) {
    EXPECT_EQ(kind, TokenUser);
    PSID sid = nullptr;
    ConvertStringSidToSidW(kSessionsUser, &sid);
    const DWORD sidSize = GetLengthSid(sid);
    *needed = sizeof(TOKEN_USER) + sidSize;
    const bool fits = out && size >= *needed;
    if (fits) {
        auto* const user = static_cast<TOKEN_USER*>(out);
        user->User = {user + 1, 0};
        std::memcpy(user + 1, sid, sidSize);
    }
    LocalFree(sid);
    return fits;
}

BOOL WINAPI TellNothing(HANDLE, TOKEN_INFORMATION_CLASS, void*, DWORD, DWORD* needed) {
    *needed = 0;
    return FALSE;
}

int g_enumerations = 0;

BOOL WINAPI NoSessions(HANDLE, DWORD, DWORD, WTS_SESSION_INFOW**, DWORD*) {
    ++g_enumerations;
    return FALSE;
}

TEST(UserIdentityTest, WithoutTheSessionsTokenItIsTheOwnUser) {
    const harness::FoundFunction refuse("WTSQueryUserToken", &Refuse);
    EXPECT_EQ(InteractiveUserSid(), suite::OwnUserSid());
    EXPECT_TRUE(InteractiveUserSid().starts_with(L"S-1-5-"));
}

TEST(UserIdentityTest, TheSessionsUserComesFirst) {
    const harness::FoundFunction give("WTSQueryUserToken", &Give);
    const harness::ImportHook tell(nullptr, "GetTokenInformation", &TellUser);
    EXPECT_EQ(InteractiveUserSid(), kSessionsUser);
}

TEST(UserIdentityTest, ATokenThatTellsNothingLeavesTheOtherSessions) {
    g_enumerations = 0;
    const harness::FoundFunction give("WTSQueryUserToken", &Give);
    const harness::FoundFunction sessions("WTSEnumerateSessionsW", &NoSessions);
    const harness::ImportHook tell(nullptr, "GetTokenInformation", &TellNothing);
    EXPECT_EQ(InteractiveUserSid(), L"");
    EXPECT_EQ(g_enumerations, 1);
}

// Their libraries take longer to load than the window to be made, and a domain's controller may be out of reach.
TEST(UserIdentityTest, NoAccountIsLookedUp) {
    const harness::FoundFunction give("WTSQueryUserToken", &Give);
    {
        const RefusedCall byName(L"advapi32.dll", "LookupAccountNameW");
        const RefusedCall byIdentifier(L"advapi32.dll", "LookupAccountSidW");
        const int before = RefusedCall::Count();
        EXPECT_EQ(InteractiveUserSid(), suite::OwnUserSid());
        EXPECT_EQ(RefusedCall::Count(), before);
        DWORD length = 0;
        EXPECT_FALSE(LookupAccountNameW(nullptr, L"somebody", nullptr, &length, nullptr, &length, nullptr));
        EXPECT_EQ(RefusedCall::Count(), before + 1) << "a look-up would have been seen";
    }
    EXPECT_EQ(GetModuleHandleW(L"secur32.dll"), nullptr);
}

}  // namespace
