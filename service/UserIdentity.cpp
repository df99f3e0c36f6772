#include "service/UserIdentity.h"

#include <windows.h>

#include <wtsapi32.h>

#include <span>

#include "suite/common/Handle.h"
#include "suite/common/SystemLibrary.h"
#include "suite/common/UserSid.h"

namespace {

constinit suite::SystemLibrary wtsapi32(L"wtsapi32.dll");
constinit suite::SystemFunction<decltype(&WTSQueryUserToken)> queryUserToken(wtsapi32, "WTSQueryUserToken");
constinit suite::SystemFunction<decltype(&WTSEnumerateSessionsW)> enumerateSessions(wtsapi32, "WTSEnumerateSessionsW");
constinit suite::SystemFunction<decltype(&WTSFreeMemory)> freeMemory(wtsapi32, "WTSFreeMemory");

// Of the session's user. The system gives it to services only.
suite::Handle SessionToken(DWORD session) {
    HANDLE token = nullptr;
    return suite::Handle(queryUserToken.CallOr(FALSE, session, &token) != FALSE ? token : nullptr);
}

// The token tells the identifier itself: by way of the account's name a network may be asked, and the system loads its
// libraries for signing in. Without the session's token the program's own user counts: that is the session's wherever
// the program was simply started by him.
std::wstring SidOfSession(DWORD session) {
    const suite::Handle token = SessionToken(session);
    return token ? suite::TokenUserSid(token.Get()) : suite::OwnUserSid();
}

std::wstring SidOfFirstActiveSession() {
    WTS_SESSION_INFOW* sessions = nullptr;
    DWORD count = 0;
    if (!enumerateSessions.CallOr(FALSE, WTS_CURRENT_SERVER_HANDLE, 0, 1, &sessions, &count)) {
        return {};
    }
    std::wstring sid;
    for (const WTS_SESSION_INFOW& session : std::span(sessions, count)) {
        if (session.State == WTSActive) {
            sid = SidOfSession(session.SessionId);
            break;
        }
    }
    if (const auto free = freeMemory.Get()) {
        free(sessions);
    }
    return sid;
}

}  // namespace

std::wstring InteractiveUserSid() {
    std::wstring sid = SidOfSession(WTSGetActiveConsoleSessionId());
    return sid.empty() ? SidOfFirstActiveSession() : sid;
}
