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
    EXPECT_EQ(Masked(LR"(load \\server\USERS\me" fail)"), LR"(load \\<machine>\USERS\<user>" fail)");
    EXPECT_EQ(Masked(LR"(C:\Users\last)"), LR"(C:\Users\<user>)");
}

TEST(PersonalData, OtherFoldersKeepTheirs) {
    EXPECT_EQ(Masked(LR"(C:\ProgramData\Comms\LumiCamera)"), LR"(C:\ProgramData\Comms\LumiCamera)");
    EXPECT_EQ(Masked(LR"(C:\Superusers\me)"), LR"(C:\Superusers\me)");
    EXPECT_EQ(Masked(LR"(C:\Users\)"), LR"(C:\Users\)");
    EXPECT_EQ(Masked(L"users"), L"users");
    EXPECT_EQ(Masked(LR"(users\me)"), LR"(users\me)") << "nothing stands before it";
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
    EXPECT_EQ(Masked(L"S-1-5-21-1-2-9:5"), L"S-1-5-21-<account>:5");
    EXPECT_EQ(Masked(L"S-1-5-21-1-2-0/5"), L"S-1-5-21-<account>/5");
}

TEST(PersonalData, EveryFormOfAnAccountLosesItsNumbers) {
    EXPECT_EQ(Masked(L"S-1-12-1-1111-2222-3333-4444 x"), L"S-1-12-1-<account> x");
    EXPECT_EQ(Masked(L"s-1-12-1-1111-2222.jpg"), L"S-1-12-1-<account>.jpg");
    EXPECT_EQ(Masked(L"S-1-11-96-362-58364"), L"S-1-11-96-<account>");
    EXPECT_EQ(Masked(L"S-1-5-80-1-2 S-1-5-32-544 S-1-15-2-1"), L"S-1-5-80-1-2 S-1-5-32-544 S-1-15-2-1") << "nobody's";
}

TEST(PersonalData, DomainsGoWithTheirParts) {
    const PersonalData data({L"Anna", L"a trip.to.mp4"}, {L"anna-pc.corp.example.com", L"CORP"});
    EXPECT_EQ(data.Mask(L"CORP\\anna"), L"<name>\\<name>");
    EXPECT_EQ(data.Mask(L"on ANNA-PC.corp.example.com."), L"on <name>.");
    EXPECT_EQ(data.Mask(L"anna-pc, example"), L"<name>, <name>");
    EXPECT_EQ(data.Mask(L"dc1.corp.example.com"), L"dc1.<name>.<name>.com");
    EXPECT_EQ(data.Mask(L"a com port to a trip"), L"a com port to a trip");
}

TEST(PersonalData, MachinesOnTheNetworkLoseTheirNames) {
    EXPECT_EQ(Masked(LR"(\\nas-1.home\films\a.mp4)"), LR"(\\<machine>\films\a.mp4)");
    EXPECT_EQ(Masked(LR"(open "\\NAS\x")"), LR"(open "\\<machine>\x")");
    EXPECT_EQ(Masked(LR"(\\?\UNC\nas\x)"), LR"(\\?\UNC\<machine>\x)");
    EXPECT_EQ(Masked(LR"(C:\\dir\x a\\b)"), LR"(C:\\dir\x a\\b)") << "no machine within a path";
    EXPECT_EQ(Masked(LR"(\\.\Pipe\x \\?\C:\x \\)"), LR"(\\.\Pipe\x \\?\C:\x \\)");
}

TEST(PersonalData, MailAddressesGo) {
    EXPECT_EQ(Masked(L"to b.c+d@mail-1.example.org."), L"to <address>.");
    EXPECT_EQ(Masked(L"(anna@corp.local)"), L"(<address>)");
    EXPECT_EQ(Masked(L"x@y.org"), L"<address>");
    EXPECT_EQ(Masked(L"img@2x.png, a@b, @b.org, b@.org"), L"img@2x.png, a@b, @b.org, b@.org");
    EXPECT_EQ(Masked(L"a@ b.org, c@"), L"a@ b.org, c@");
    for (const std::wstring ending :
         {L"png", L"jpg", L"jpeg", L"bmp", L"mp4", L"mov", L"svg", L"ico", L"xml", L"log", L"txt", L"dll", L"exe"}) {
        EXPECT_EQ(Masked(L"img@2x." + ending), L"img@2x." + ending);
    }
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
