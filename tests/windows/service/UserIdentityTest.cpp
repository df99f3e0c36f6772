// Whose backgrounds they are: what is asked of the system for it, and what is not.
#include "service/UserIdentity.h"

#include <windows.h>

#include <gmock/gmock.h>
#include <sddl.h>

#include "suite/common/UserSid.h"
#include "tests/support/FoundFunction.h"
#include "tests/support/ImportHook.h"

namespace {

int g_lookups = 0;
bool g_lookupWorks = false;
constexpr wchar_t kFound[] = L"S-1-5-21-5-6-7-1008";

// By the rules of Windows: only services are given a session's token.
BOOL WINAPI Refuse(ULONG, HANDLE*) {
    SetLastError(ERROR_PRIVILEGE_NOT_HELD);
    return FALSE;
}

BOOL WINAPI Give(ULONG, HANDLE* token) {
    return OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY | TOKEN_DUPLICATE | TOKEN_IMPERSONATE, token);
}

// Asks a domain's controller, which may be out of reach.
BOOL WINAPI LookUp(const wchar_t*, const wchar_t* account, PSID out, DWORD* size, wchar_t*, DWORD*, SID_NAME_USE*) {
    ++g_lookups;
    EXPECT_STRNE(account, L"");
    if (!g_lookupWorks) {
        SetLastError(ERROR_NONE_MAPPED);
        return FALSE;
    }
    PSID sid = nullptr;
    ConvertStringSidToSidW(kFound, &sid);
    const BOOL copied = CopySid(*size, out, sid);
    LocalFree(sid);
    return copied;
}

class UserIdentityTest : public testing::Test {
  protected:
    UserIdentityTest() {
        g_lookups = 0;
        g_lookupWorks = false;
    }
    const harness::ImportHook lookUp_{nullptr, "LookupAccountNameW", &LookUp};
};

TEST_F(UserIdentityTest, WithoutTheSessionsTokenItIsTheOwnUserAndNoNetworkIsAsked) {
    const harness::FoundFunction refuse("WTSQueryUserToken", &Refuse);
    EXPECT_EQ(InteractiveUserSid(), suite::OwnUserSid());
    EXPECT_TRUE(InteractiveUserSid().starts_with(L"S-1-5-"));
    EXPECT_EQ(g_lookups, 0);
}

TEST_F(UserIdentityTest, TheSessionsUserComesFirst) {
    const harness::FoundFunction give("WTSQueryUserToken", &Give);
    g_lookupWorks = true;
    EXPECT_EQ(InteractiveUserSid(), kFound);
    EXPECT_EQ(g_lookups, 1);
}

TEST_F(UserIdentityTest, ANameThatNobodyKnowsCostsNothing) {
    const harness::FoundFunction give("WTSQueryUserToken", &Give);
    EXPECT_EQ(InteractiveUserSid(), suite::OwnUserSid());
    EXPECT_EQ(g_lookups, 1);
}

}  // namespace
