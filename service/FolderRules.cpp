#include "service/FolderRules.h"

namespace service {

namespace {

constexpr wchar_t kSystem[] = L"S-1-5-18";
constexpr wchar_t kAdministrators[] = L"S-1-5-32-544";

}  // namespace

bool MayUseSharedFolder(const suite::FolderFacts& facts) {
    return facts.error == 0 && facts.isFolder && !facts.isLink;
}

bool MayUseUserFolder(const suite::FolderFacts& facts, const std::wstring& userSid, const std::wstring& ownUser) {
    if (!MayUseSharedFolder(facts) || facts.owner.empty()) {
        return false;
    }
    return facts.owner == userSid || facts.owner == ownUser || facts.owner == kSystem || facts.owner == kAdministrators;
}

}  // namespace service
