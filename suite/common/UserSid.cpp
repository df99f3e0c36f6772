#include "suite/common/UserSid.h"

#include <sddl.h>

#include <cstddef>
#include <memory>
#include <span>
#include <vector>

#include "suite/common/Handle.h"

namespace suite {

namespace {

struct LocalFreeDeleter {
    void operator()(void* memory) const { LocalFree(memory); }
};
template <typename T>
using LocalMemory = std::unique_ptr<T, LocalFreeDeleter>;

// Empty when the token does not tell.
std::vector<std::byte> TokenFact(HANDLE token, TOKEN_INFORMATION_CLASS kind) {
    DWORD size = 0;
    GetTokenInformation(token, kind, nullptr, 0, &size);
    std::vector<std::byte> fact(size);
    if (size == 0 || !GetTokenInformation(token, kind, fact.data(), size, &size)) {
        fact.clear();
    }
    return fact;
}

}  // namespace

std::wstring SidText(PSID identifier) {
    wchar_t* text = nullptr;
    if (!identifier || !ConvertSidToStringSidW(identifier, &text)) {
        return {};
    }
    const LocalMemory<wchar_t> owned(text);
    return text;
}

std::wstring TokenUserSid(HANDLE token) {
    const std::vector<std::byte> fact = TokenFact(token, TokenUser);
    return fact.empty() ? std::wstring() : SidText(reinterpret_cast<const TOKEN_USER*>(fact.data())->User.Sid);
}

bool TokenIsAdministrator(HANDLE token) {
    const std::vector<std::byte> fact = TokenFact(token, TokenGroups);
    if (fact.empty()) {
        return false;
    }
    const auto* const groups = reinterpret_cast<const TOKEN_GROUPS*>(fact.data());
    for (const SID_AND_ATTRIBUTES& group : std::span(groups->Groups, groups->GroupCount)) {
        if (IsWellKnownSid(group.Sid, WinBuiltinAdministratorsSid)) {
            return (group.Attributes & SE_GROUP_ENABLED) != 0;
        }
    }
    return false;
}

std::wstring OwnUserSid() {
    HANDLE token = nullptr;
    if (!OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &token)) {
        return {};
    }
    return TokenUserSid(Handle(token).Get());
}

std::wstring OwnerSid(HANDLE object, DWORD& error) {
    DWORD size = 0;
    GetKernelObjectSecurity(object, OWNER_SECURITY_INFORMATION, nullptr, 0, &size);
    std::vector<std::byte> descriptor(size);
    if (!GetKernelObjectSecurity(object, OWNER_SECURITY_INFORMATION, descriptor.data(), size, &size)) {
        error = GetLastError();
        return {};
    }
    PSID owner = nullptr;
    BOOL byDefault = FALSE;
    error = GetSecurityDescriptorOwner(descriptor.data(), &owner, &byDefault) ? ERROR_SUCCESS : GetLastError();
    return SidText(owner);
}

}  // namespace suite
