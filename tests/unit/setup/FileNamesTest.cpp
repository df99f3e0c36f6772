#include "setup/FileNames.h"

#include <gmock/gmock.h>

namespace setup {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(FileNames, WhatLeadsOutOfTheFolderIsNoName) {
    for (const wchar_t* name : {L"Pixora.exe", L"res\\layout\\a.xml", L"a..b\\..c", L"licences\\a b.txt"}) {
        EXPECT_TRUE(IsFileName(name)) << name;
    }
    for (const wchar_t* name :
         {L"", L"\\Windows\\a.dll", L"C:\\a", L"a:b", L"..", L"..\\a", L"res\\..\\..\\a", L"res\\..", L"res/a"}) {
        EXPECT_FALSE(IsFileName(name)) << name;
    }
}

TEST(FileNames, FoldersComeBeforeTheirParents) {
    EXPECT_THAT(FoldersOf({L"Pixora.exe", L"res\\layout\\a.xml", L"res\\b.xml", L"x\\c"}),
                ElementsAre(L"res\\layout", L"res", L"x"));
    EXPECT_THAT(FoldersOf({L"Pixora.exe"}), IsEmpty());
}

TEST(FileNames, TheProgramComesLastAndEachNameOnce) {
    EXPECT_THAT(ProgramLast({L"b", L"Pixora.exe", L"a", L"z", L"b"}), ElementsAre(L"a", L"b", L"z", L"Pixora.exe"));
}

}  // namespace
}  // namespace setup
