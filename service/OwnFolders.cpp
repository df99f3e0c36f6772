#include "service/OwnFolders.h"

#include "service/FileUtil.h"
#include "service/FolderRules.h"
#include "service/pictures/CustomFolder.h"
#include "suite/common/HeldFolder.h"
#include "suite/common/UserSid.h"
#include "suite/logger/QxLogger.h"

namespace service {

namespace {

void TellRefusal(const std::wstring& folder, const suite::FolderFacts& facts) {
    LogLine(LogLevel::kError, L"OwnFolders::Open", L"a link, or somebody else's, is not used: ", folder, L", owner ",
            facts.owner, L", error ", facts.error);
}

}  // namespace

OwnFolders::OwnFolders(const std::wstring& userSid) : state_(Open(userSid)) {}

OwnFolders::State OwnFolders::Open(const std::wstring& userSid) {
    const FileUtil& files = FileUtil::GetInstance();
    const std::wstring shared = pictures::CustomFolder::kBase;
    if (userSid.empty() || !files.CreateResDirectory(shared)) {
        return State::kNoSharedFolder;
    }
    shared_ = suite::HoldFolder(shared);
    if (!shared_) {
        return State::kNoSharedFolder;
    }
    if (const suite::FolderFacts facts = suite::FactsOf(shared_.Get(), shared); !MayUseSharedFolder(facts)) {
        TellRefusal(shared, facts);
        return State::kRefused;
    }

    const std::wstring user = pictures::CustomFolder::OfUser(userSid);
    if (!files.CreateResDirectory(user)) {
        return State::kNoUserFolder;
    }
    user_ = suite::HoldFolder(user);
    if (!user_) {
        return State::kNoUserFolder;
    }
    if (const suite::FolderFacts facts = suite::FactsOf(user_.Get(), user);
        !MayUseUserFolder(facts, userSid, suite::OwnUserSid())) {
        TellRefusal(user, facts);
        return State::kRefused;
    }
    return State::kUsable;
}

}  // namespace service
