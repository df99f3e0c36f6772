#include "service/UserIdentity.h"

#include <windows.h>

#include <sddl.h>
#include <wtsapi32.h>
#define SECURITY_WIN32
#include <security.h>

#include <array>
#include <span>

#include "suite/common/Handle.h"
#include "suite/common/SystemLibrary.h"

namespace {

constinit suite::SystemLibrary wtsapi32(L"wtsapi32.dll");
constinit suite::SystemFunction<decltype(&WTSQueryUserToken)> queryUserToken(wtsapi32, "WTSQueryUserToken");
constinit suite::SystemFunction<decltype(&WTSEnumerateSessionsW)> enumerateSessions(wtsapi32, "WTSEnumerateSessionsW");
constinit suite::SystemFunction<decltype(&WTSFreeMemory)> freeMemory(wtsapi32, "WTSFreeMemory");
constinit suite::SystemLibrary secur32(L"secur32.dll");
constinit suite::SystemFunction<decltype(&GetUserNameExW)> getUserName(secur32, "GetUserNameExW");

constexpr DWORD kNameSize = 260;  // characters, of user and domain names; bytes, of an identifier

// "domain\user" of the session's user. The token is given to services only; without it the name is that of the account
// that the program runs under, which is the session's user wherever the program was simply started by him.
std::wstring SessionUserName(DWORD session) {
    HANDLE rawToken = nullptr;
    const bool gotToken = queryUserToken.CallOr(FALSE, session, &rawToken) != FALSE;
    const suite::Handle token(gotToken ? rawToken : nullptr);
    const bool impersonating = gotToken && ImpersonateLoggedOnUser(token.Get()) != FALSE;
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
    wchar_t* text = nullptr;
    if (!ConvertSidToStringSidW(sid.data(), &text)) {
        return {};
    }
    std::wstring result(text);
    LocalFree(text);
    return result;
}

std::wstring SidOfSession(DWORD session) {
    return SidOfAccount(SessionUserName(session));
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
