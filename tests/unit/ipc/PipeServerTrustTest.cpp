// Whose server the client of the pipe listens to.
#include "suite/ipc/PipeServerTrust.h"

#include <gtest/gtest.h>

namespace {

using suite::PipeServerIdentity;

constexpr wchar_t kUser[] = L"S-1-5-21-1-2-3-1001";
constexpr wchar_t kOther[] = L"S-1-5-21-1-2-3-1002";

bool IsTrusted(const PipeServerIdentity& server) {
    return suite::IsTrustedServer(server, kUser);
}

TEST(PipeServerTrust, TheSystemServicesAdministratorsAndTheUserAreBelieved) {
    for (const wchar_t* account :
         {L"S-1-5-18", L"S-1-5-19", L"S-1-5-20", L"S-1-5-32-544", L"S-1-5-80-1-2-3-4-5", kUser}) {
        EXPECT_TRUE(IsTrusted({account, account})) << account;
        EXPECT_TRUE(IsTrusted({account, L""})) << account << " a service, whose process a user may not look at";
        EXPECT_TRUE(IsTrusted({L"", account})) << account << " a pipe without an owner";
    }
}

TEST(PipeServerTrust, OthersAreNot) {
    for (const wchar_t* account : {kOther, L"S-1-5-21-1-2-3-10010", L"S-1-5-1", L"S-1-5-180", L"S-1-5-32-545",
                                   L"S-1-5-8", L"S-1-5-32-5440", L"S-1-1-0", L"S-1-5-800-1"}) {
        EXPECT_FALSE(IsTrusted({account, account})) << account;
        EXPECT_FALSE(IsTrusted({account, L""})) << account;
        EXPECT_FALSE(IsTrusted({L"", account})) << account;
    }
}

TEST(PipeServerTrust, BothFactsHaveToBeSound) {
    EXPECT_FALSE(IsTrusted({L"S-1-5-18", kOther})) << "one more instance of a service's pipe";
    EXPECT_FALSE(IsTrusted({kOther, L"S-1-5-18"})) << "the number of a process that has ended";
}

TEST(PipeServerTrust, AnAdministratorIsWhoeverMayActAsOne) {
    EXPECT_TRUE(IsTrusted({L"S-1-5-32-544", kOther, true}));
    EXPECT_TRUE(IsTrusted({L"", kOther, true}));
    EXPECT_FALSE(IsTrusted({kOther, kOther, true})) << "the pipe is somebody else's all the same";
}

TEST(PipeServerTrust, WithoutAnyAnswerNobodyIsBelieved) {
    EXPECT_FALSE(IsTrusted({}));
    EXPECT_FALSE(suite::IsTrustedServer({}, L"")) << "an unknown user is not the unknown server's";
    EXPECT_FALSE(suite::IsTrustedServer({kOther, kOther}, L""));
}

}  // namespace
