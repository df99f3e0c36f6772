#include "suite/ipc/PipeServerTrust.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace suite {

namespace {

constexpr std::array<std::wstring_view, 4> kTrusted{
    L"S-1-5-18",      // the system
    L"S-1-5-19",      // local service
    L"S-1-5-20",      // network service
    L"S-1-5-32-544",  // the administrators, whom what one of them makes belongs to
};
constexpr std::wstring_view kServices = L"S-1-5-80-";  // each service's own account

bool IsTrustedAccount(const std::wstring& account, const std::wstring& ownUser) {
    return account == ownUser || account.starts_with(kServices) ||
           std::ranges::find(kTrusted, account) != kTrusted.end();
}

}  // namespace

bool IsTrustedServer(const PipeServerIdentity& server, const std::wstring& ownUser) {
    const bool ownerIsKnown = !server.pipeOwner.empty();
    const bool userIsKnown = !server.processUser.empty();
    if (!ownerIsKnown && !userIsKnown) {
        return false;
    }
    return (!ownerIsKnown || IsTrustedAccount(server.pipeOwner, ownUser)) &&
           (!userIsKnown || server.processIsAdministrator || IsTrustedAccount(server.processUser, ownUser));
}

}  // namespace suite
