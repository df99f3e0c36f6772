#include "diagnostics/PersonalData.h"

#include <gtest/gtest.h>

namespace diagnostics {
namespace {

std::wstring Masked(std::wstring_view text) {
    return PersonalData({L"Anna", L"ANNA-PC", L"", L"x"}).Mask(text);
}

TEST(PersonalData, TheProfileFolderLosesItsName) {
    EXPECT_EQ(Masked(LR"(C:\Users\somebody\Pictures\a.jpg)"), LR"(C:\Users\<user>\Pictures\a.jpg)");
    EXPECT_EQ(Masked(LR"(c:/users/Two Words/a)"), L"c:/users/<user>/a");
    EXPECT_EQ(Masked(LR"(load \\server\USERS\me" fail)"), LR"(load \\server\USERS\<user>" fail)");
    EXPECT_EQ(Masked(LR"(C:\Users\last)"), LR"(C:\Users\<user>)");
}

TEST(PersonalData, OtherFoldersKeepTheirs) {
    EXPECT_EQ(Masked(LR"(C:\ProgramData\Comms\LumiCamera)"), LR"(C:\ProgramData\Comms\LumiCamera)");
    EXPECT_EQ(Masked(LR"(C:\Superusers\me)"), LR"(C:\Superusers\me)");
    EXPECT_EQ(Masked(LR"(C:\Users\)"), LR"(C:\Users\)");
    EXPECT_EQ(Masked(L"users"), L"users");
}

TEST(PersonalData, NamesThatStandAloneGo) {
    EXPECT_EQ(Masked(L"user anna on anna-pc"), L"user <name> on <name>");
    EXPECT_EQ(Masked(L"ANNA"), L"<name>");
    EXPECT_EQ(Masked(L"Anna's file D:\\anna\\x"), L"<name>'s file D:\\<name>\\x");
    EXPECT_EQ(Masked(L"Susanna, Annalena, anna_1"), L"Susanna, Annalena, anna_1");
}

TEST(PersonalData, SingleLettersAreNoNames) {
    EXPECT_EQ(Masked(L"x is 1"), L"x is 1");
}

TEST(PersonalData, AccountsLoseTheirNumbers) {
    EXPECT_EQ(Masked(L"S-1-5-21-11-22-33-1001\\a"), L"S-1-5-21-<account>\\a");
    EXPECT_EQ(Masked(L"(A;;FA;;;S-1-5-21-1-2-3-500)"), L"(A;;FA;;;S-1-5-21-<account>)");
    EXPECT_EQ(Masked(L"S-1-5-18 and BU"), L"S-1-5-18 and BU");
}

TEST(PersonalData, ANameThatFollowsAnAccountGoesToo) {
    EXPECT_EQ(Masked(L"S-1-5-21-1-2-3-50anna; x"), L"S-1-5-21-<account><name>; x");
    EXPECT_EQ(Masked(L"S-1-5-21-1-S-1-5-21-2"), L"S-1-5-21-<account>S-1-5-21-<account>");
    EXPECT_EQ(Masked(L"annas-1-5-21-1"), L"annas-1-5-21-1");
}

TEST(PersonalData, EmptyTextStaysEmpty) {
    EXPECT_EQ(Masked(L""), L"");
    EXPECT_EQ(PersonalData({}).Mask(L"anna"), L"anna");
}

}  // namespace
}  // namespace diagnostics
