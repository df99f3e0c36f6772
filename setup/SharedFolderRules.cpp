#include "setup/SharedFolderRules.h"

namespace setup {
namespace {

constexpr unsigned long kFileNotFound = 2;
constexpr unsigned long kPathNotFound = 3;

// The system, the administrators, and the service that owns the files of Windows.
constexpr const wchar_t* kTrusted[] = {L"S-1-5-18", L"S-1-5-32-544",
                                       L"S-1-5-80-956008885-3418522649-1831038044-1853292631-2271478464"};

bool IsTrusted(const std::wstring& owner, const std::wstring& ownUser) {
    for (const wchar_t* trusted : kTrusted) {
        if (owner == trusted) {
            return true;
        }
    }
    return !owner.empty() && owner == ownUser;
}

}  // namespace

Verdict Judge(const FolderFacts& facts, const std::wstring& ownUser) {
    if (facts.error == kFileNotFound || facts.error == kPathNotFound) {
        return Verdict::kMissing;
    }
    if (facts.error != 0) {
        return Verdict::kUnreadable;
    }
    if (facts.isLink || !facts.isFolder) {
        return Verdict::kPlanted;
    }
    return IsTrusted(facts.owner, ownUser) ? Verdict::kSound : Verdict::kForeign;
}

}  // namespace setup
