// Which folders the user's own backgrounds may lie in.
#include "service/FolderRules.h"

#include <gtest/gtest.h>

namespace {

using suite::FolderFacts;

constexpr wchar_t kUser[] = L"S-1-5-21-1-2-3-1001";
constexpr wchar_t kRunsAs[] = L"S-1-5-21-1-2-3-500";

FolderFacts Of(const wchar_t* owner) {
    return {0, true, false, owner};
}

bool MayUse(const FolderFacts& facts) {
    return service::MayUseUserFolder(facts, kUser, kRunsAs);
}

TEST(FolderRules, TheUsersFolderIsTheirOwnOrMadeForThem) {
    for (const wchar_t* owner : {kUser, kRunsAs, L"S-1-5-18", L"S-1-5-32-544"}) {
        EXPECT_TRUE(MayUse(Of(owner))) << owner;
    }
    for (const wchar_t* owner : {L"", L"S-1-5-21-1-2-3-1002", L"S-1-5-32-545", L"S-1-5-19", L"S-1-1-0"}) {
        EXPECT_FALSE(MayUse(Of(owner))) << owner;
    }
    EXPECT_FALSE(service::MayUseUserFolder(Of(L""), L"", L"")) << "an unknown owner is not the unknown user";
}

TEST(FolderRules, TheSharedFolderIsAnybodys) {
    EXPECT_TRUE(service::MayUseSharedFolder(Of(L"S-1-5-21-1-2-3-1002")));
    EXPECT_TRUE(service::MayUseSharedFolder(Of(L"")));
}

TEST(FolderRules, LinksFilesAndWhatCannotBeLookedAtAreNot) {
    FolderFacts link = Of(kUser);
    link.isLink = true;
    FolderFacts file = Of(kUser);
    file.isFolder = false;
    FolderFacts unknown = Of(kUser);
    unknown.error = 5;
    for (const FolderFacts& facts : {link, file, unknown}) {
        EXPECT_FALSE(service::MayUseSharedFolder(facts));
        EXPECT_FALSE(MayUse(facts));
    }
}

}  // namespace
