#include "DuiLib/UICulture.h"

#include "TestWindow.h"

namespace DuiLib::Test {
namespace {

class Culture : public testing::Test {
  protected:
    Culture() {
        Write(L"en_US", R"(<Strings language="en_US" direction="ltr">
            <String id="IDS_A">Hello</String><String id="IDS_B">Only &lt;b&gt;English&lt;/b&gt;</String></Strings>)");
        Write(L"de_DE", R"(<Strings language="de_DE" direction="ltr"><String id="IDS_A">Grüße</String></Strings>)");
        Write(L"ar_SA", R"(<Strings language="ar_SA" direction="rtl"><String id="IDS_A">مرحبا</String></Strings>)");
        culture.SetValuesFolder(Folder());
    }
    ~Culture() override {
        harness::TestLog::Allow(testing::HasSubstr("No string tables for  in (UICulture::SelectLanguage)"));
        culture.SetValuesFolder(L"");
        culture.SelectLanguage(L"", false);
    }
    static std::wstring Folder() { return ResourceFolder::Get().Path() + L"values"; }
    static void Write(const std::wstring& language, std::string_view table) {
        ResourceFolder::Get().Write(L"values\\" + language + L"\\strings.xml", table);
    }
    UICulture& culture = *UICulture::GetInstance();
};

TEST_F(Culture, GivesTheTextOfTheLanguageThenEnglishThenTheKey) {
    EXPECT_TRUE(culture.SelectLanguage(L"de_DE", true));
    EXPECT_EQ(culture.GetLanguage(), L"de_DE");
    EXPECT_EQ(culture.GetString(L"IDS_A"), L"Grüße");
    EXPECT_EQ(culture.GetString(L"IDS_B"), L"Only <b>English</b>");
    EXPECT_EQ(culture.GetString(L"IDS_NONE"), L"IDS_NONE");
    EXPECT_FALSE(culture.IsRightToLeft());
}

TEST_F(Culture, OtherRegionOfTheSameLanguageThenEnglish) {
    EXPECT_TRUE(culture.SelectLanguage(L"ar_EG", false));
    EXPECT_EQ(culture.GetLanguage(), L"ar_SA");
    EXPECT_TRUE(culture.IsRightToLeft());
    EXPECT_TRUE(culture.SelectLanguage(L"fr_FR", true));
    EXPECT_EQ(culture.GetLanguage(), L"en_US");
    EXPECT_FALSE(culture.IsRightToLeft());
}

TEST_F(Culture, BrokenTableIsLoggedAndReadAsFarAsItIsSound) {
    Write(L"de_DE", R"(<Strings direction="ltr"><String id="IDS_A">Gut</String><String id="IDS_B">Halb)");
    LogWatch log;
    EXPECT_TRUE(culture.SelectLanguage(L"de_DE", true));
    EXPECT_TRUE(log.Has("strings.xml"));
    EXPECT_EQ(culture.GetString(L"IDS_A"), L"Gut");
}

TEST_F(Culture, CommentsAndBlanksOfATableAreNoFaults) {
    Write(L"de_DE",
          "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n<!-- one --><!-- two -->\n\n<!-- three -->"
          "<Strings direction=\"ltr\"> <!-- four --> <!-- five --><String id=\"IDS_A\">a<![CDATA[<b>]]>c"
          "<!-- six --> d</String>\n</Strings>\n<!-- seven -->\n");
    LogWatch log;
    EXPECT_TRUE(culture.SelectLanguage(L"de_DE", true));
    EXPECT_EQ(culture.GetString(L"IDS_A"), L"a<b>c d");
    log.ExpectNone();
}

TEST_F(Culture, TablesThatEndAnywhereAreLogged) {
    const std::string whole =
        R"(<?xml version="1.0"?><!-- c --><Strings direction="ltr"><String id="IDS_A"><![CDATA[x]]>text</String><!-- d --></Strings>)";
    for (std::size_t length = 0; length < whole.size(); ++length) {
        Write(L"de_DE", whole.substr(0, length));
        LogWatch log;
        EXPECT_TRUE(culture.SelectLanguage(L"de_DE", true));  // at least the English one
        EXPECT_FALSE(log.Failures().empty()) << whole.substr(0, length);
    }
}

TEST_F(Culture, WhatIsWrongWithATableIsToldWithItsPlace) {
    Write(L"de_DE",
          "<Strings direction=\"up\">\n<String id=\"IDS_A\">Gut</String>\n<String>Namenlos</String>\n"
          "<String id=\"\">Leer</String>\n<Text id=\"IDS_C\">Fremd</Text>\n"
          "<String id=\"IDS_D\">mit <b>Auszeichnung</b></String>\n<String id=\"IDS_A\">Nochmals</String>\n"
          "<String id=\"IDS_E\">Ende</String></Strings>");
    LogWatch log;
    EXPECT_TRUE(culture.SelectLanguage(L"de_DE", true));
    for (const char* const complaint :
         {":1: Unknown direction up", ":3: No string with an id: String", ":4: No string with an id: String",
          ":5: No string with an id: Text", ":6: Markup is not escaped in string IDS_D", ":7: Second string IDS_A"}) {
        EXPECT_TRUE(log.Has("values\\de_DE\\strings.xml" + std::string(complaint))) << complaint;
    }
    EXPECT_EQ(log.Failures().size(), 6u);
    EXPECT_FALSE(culture.IsRightToLeft());
    EXPECT_EQ(culture.GetString(L"IDS_A"), L"Gut") << "the first one counts";
    EXPECT_EQ(culture.GetString(L"IDS_C"), L"IDS_C");
    EXPECT_EQ(culture.GetString(L"IDS_E"), L"Ende") << "the others are read all the same";
}

TEST_F(Culture, AnotherRootIsToldAndNothingOfItIsRead) {
    Write(L"de_DE", R"(<Texts direction="rtl"><String id="IDS_A">Gut</String></Texts>)");
    LogWatch log;
    EXPECT_TRUE(culture.SelectLanguage(L"de_DE", true));
    EXPECT_TRUE(log.Has("strings.xml:1: The root is not Strings but Texts"));
    EXPECT_EQ(log.Failures().size(), 1u);
    EXPECT_EQ(culture.GetLanguage(), L"en_US");
    EXPECT_EQ(culture.GetString(L"IDS_A"), L"Hello");
    EXPECT_FALSE(culture.IsRightToLeft());
}

// Seen in the path that a complaint names: the system opens a doubled backslash all the same.
TEST_F(Culture, AFolderWithItsSlashGetsNoSecondOne) {
    Write(L"de_DE", "<Strings/");
    for (const wchar_t* const end : {L"", L"\\", L"/"}) {
        culture.SetValuesFolder(Folder() + end);
        LogWatch log;
        EXPECT_TRUE(culture.SelectLanguage(L"de_DE", true));
        EXPECT_TRUE(log.Has(*end == L'/' ? "values/de_DE\\strings.xml" : "values\\de_DE\\strings.xml"));
    }
}

TEST_F(Culture, MissingTableFallsBackToEnglish) {
    std::filesystem::create_directories(Folder() + L"\\it_IT");
    LogWatch log;
    EXPECT_TRUE(culture.SelectLanguage(L"it_IT", true));
    EXPECT_EQ(culture.GetLanguage(), L"en_US");
    EXPECT_EQ(culture.GetString(L"IDS_A"), L"Hello");
    EXPECT_TRUE(log.Has("it_IT"));
}

TEST_F(Culture, MissingFolderGivesKeysAndALogLine) {
    culture.SetValuesFolder(Folder() + L"_absent");
    LogWatch log;
    EXPECT_FALSE(culture.SelectLanguage(L"de_DE", true));
    EXPECT_EQ(culture.GetString(L"IDS_A"), L"IDS_A");
    EXPECT_EQ(culture.GetLanguage(), L"");
    EXPECT_FALSE(log.Failures().empty());
}

TEST_F(Culture, LayoutsTakeTheirTextsFromTheTable) {
    culture.SelectLanguage(L"de_DE", true);
    TestWindow window(R"(<Window size="200,100"><Button name="b" text="IDS_A" tooltip="IDS_B"/></Window>)");
    EXPECT_EQ(window.Find(L"b").GetText(), L"Grüße");
    EXPECT_EQ(window.Find(L"b").GetToolTip(), L"Only <b>English</b>");
}

}  // namespace
}  // namespace DuiLib::Test
