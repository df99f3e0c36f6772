#include "service/UserIdentity.h"

#include <windows.h>

#include <wtsapi32.h>
#define SECURITY_WIN32
#include <security.h>

#include <array>
#include <span>

#include "suite/common/Handle.h"
#include "suite/common/SystemLibrary.h"
#include "suite/common/UserSid.h"

namespace {

constinit suite::SystemLibrary wtsapi32(L"wtsapi32.dll");
constinit suite::SystemFunction<decltype(&WTSQueryUserToken)> queryUserToken(wtsapi32, "WTSQueryUserToken");
constinit suite::SystemFunction<decltype(&WTSEnumerateSessionsW)> enumerateSessions(wtsapi32, "WTSEnumerateSessionsW");
constinit suite::SystemFunction<decltype(&WTSFreeMemory)> freeMemory(wtsapi32, "WTSFreeMemory");
constinit suite::SystemLibrary secur32(L"secur32.dll");
constinit suite::SystemFunction<decltype(&GetUserNameExW)> getUserName(secur32, "GetUserNameExW");

constexpr DWORD kNameSize = 260;  // characters, of user and domain names; bytes, of an identifier

// Of the session's user. The system gives it to services only.
suite::Handle SessionToken(DWORD session) {
    HANDLE token = nullptr;
    return suite::Handle(queryUserToken.CallOr(FALSE, session, &token) != FALSE ? token : nullptr);
}

// "domain\user" of the token's user.
std::wstring UserName(HANDLE token) {
    const bool impersonating = ImpersonateLoggedOnUser(token) != FALSE;
    std::array<wchar_t, kNameSize> name{};
    ULONG length = kNameSize;
    const bool gotName = getUserName.CallOr(FALSE, NameSamCompatible, name.data(), &length) != FALSE;
    if (impersonating) {
        RevertToSelf();
    }
    return gotName ? std::wstring(name.data()) : std::wstring();
}

std::wstring SidOfAccount(const std::wstring& name) {
    if (name.empty()) {
        return {};
    }
    alignas(SID) std::array<unsigned char, kNameSize> sid{};
    std::array<wchar_t, kNameSize> domain{};
    DWORD sidSize = kNameSize;
    DWORD domainSize = kNameSize;
    SID_NAME_USE use = SidTypeUnknown;
    if (!LookupAccountNameW(nullptr, name.c_str(), sid.data(), &sidSize, domain.data(), &domainSize, &use)) {
        return {};
    }
    return suite::SidText(sid.data());
}

// Without the session's token the program's own user counts: that is the session's wherever the program was simply
// started by him, and it is known without asking a network.
std::wstring SidOfSession(DWORD session) {
    const suite::Handle token = SessionToken(session);
    if (!token) {
        return suite::OwnUserSid();
    }
    const std::wstring sid = SidOfAccount(UserName(token.Get()));
    return sid.empty() ? suite::TokenUserSid(token.Get()) : sid;
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
