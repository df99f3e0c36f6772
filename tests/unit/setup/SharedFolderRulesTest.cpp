#include "setup/SharedFolderRules.h"

#include <gtest/gtest.h>

namespace setup {
namespace {

const std::wstring kUser = L"S-1-5-21-1-2-3-1001";
const std::wstring kStranger = L"S-1-5-21-1-2-3-1002";

FolderFacts Folder(const std::wstring& owner) {
    FolderFacts facts;
    facts.isFolder = true;
    facts.owner = owner;
    return facts;
}

FolderFacts Unreachable(unsigned long error) {
    FolderFacts facts = Folder(L"S-1-5-18");
    facts.error = error;
    return facts;
}

TEST(SharedFolderRules, WhoMayOwnAFolder) {
    for (const wchar_t* owner :
         {L"S-1-5-18", L"S-1-5-32-544", L"S-1-5-80-956008885-3418522649-1831038044-1853292631-2271478464"}) {
        EXPECT_EQ(Judge(Folder(owner), kUser), Verdict::kSound) << owner;
    }
    EXPECT_EQ(Judge(Folder(kUser), kUser), Verdict::kSound);
    EXPECT_EQ(Judge(Folder(kStranger), kUser), Verdict::kForeign);
    EXPECT_EQ(Judge(Folder(L"S-1-5-32-545"), kUser), Verdict::kForeign);
    EXPECT_EQ(Judge(Folder(L"S-1-5-7"), kUser), Verdict::kForeign);
    EXPECT_EQ(Judge(Folder(L""), kUser), Verdict::kForeign);
    EXPECT_EQ(Judge(Folder(L""), L""), Verdict::kForeign);
}

TEST(SharedFolderRules, ALinkIsPlantedWhoeverOwnsIt) {
    FolderFacts link = Folder(L"S-1-5-18");
    link.isLink = true;
    EXPECT_EQ(Judge(link, kUser), Verdict::kPlanted);
    FolderFacts file = Folder(L"S-1-5-18");
    file.isFolder = false;
    EXPECT_EQ(Judge(file, kUser), Verdict::kPlanted);
}

TEST(SharedFolderRules, OnlyWhatIsNotThereMayBeMade) {
    EXPECT_EQ(Judge(Unreachable(2), kUser), Verdict::kMissing);
    EXPECT_EQ(Judge(Unreachable(3), kUser), Verdict::kMissing);
    for (const unsigned long error : {1ul, 5ul, 32ul, 123ul}) {
        EXPECT_EQ(Judge(Unreachable(error), kUser), Verdict::kUnreadable) << error;
    }
}

}  // namespace
}  // namespace setup
