#include <gmock/gmock.h>
#include <windows.h>

#include <fstream>

#include "suite/common/LocalFolder.h"
#include "suite/common/Utf8.h"
#include "suite/xml/FileInfo.h"
#include "suite/xml/QxXMLDocument.h"
#include "tests/windows/suite/TestFolder.h"

namespace {

// A document loaded from a file with these bytes; the file's folder has a name of several scripts.
class XmlTest : public testing::Test {
  protected:
    int Load(const std::string& bytes) {
        const std::filesystem::path path = folder_.Path() / L"config-\u00fc\u65e5.xml";
        std::ofstream(path, std::ios::binary) << bytes;
        return document_.LoadFile(suite::ToUtf8(path.wstring()));
    }
    void ExpectRefused(const std::string& bytes) {
        EXPECT_NE(Load(bytes), 0) << bytes.substr(0, 100);
        EXPECT_TRUE(document_.RootElement().IsElementNull()) << bytes.substr(0, 100);
    }
    std::string ValueAt(const std::string& element, const std::string& key) {
        return document_.RootElement().FirstNode(element).FirstNode(key).FirstAttribute("value").Value();
    }

    TestFolder folder_;
    QxXMLDocument document_;
};

std::string Repeat(const std::string& text, int times) {
    std::string all;
    for (int i = 0; i < times; ++i) {
        all += text;
    }
    return all;
}

}  // namespace

TEST_F(XmlTest, WalksAConfigurationFile) {
    ASSERT_EQ(Load(R"(<?xml version="1.0" encoding="UTF-8"?>
<!-- cameras -->
<config>
    <Laptop_15><BackgroudImage value="1"/><Other value='two'>text</Other></Laptop_15>
    <Laptop_15><BackgroudImage value="9"/></Laptop_15>
    <Default note="a&amp;b&#x41;"><BackgroudImage value="0" value2="5"></BackgroudImage></Default>
</config>
)"),
              0);
    const QxXmlElement root = document_.RootElement();
    ASSERT_FALSE(root.IsElementNull());
    EXPECT_EQ(root.Name(), "config");
    EXPECT_EQ(ValueAt("Laptop_15", "BackgroudImage"), "1");
    EXPECT_EQ(ValueAt("Laptop_15", "Other"), "two");
    EXPECT_EQ(ValueAt("Default", "BackgroudImage"), "0");
    EXPECT_EQ(root.FirstNode("Default").FirstAttribute("note").Value(), "a&bA");
    EXPECT_EQ(root.FirstNode("Default").FirstNode("BackgroudImage").FirstAttribute("value2").Value(), "5");
}

TEST_F(XmlTest, WhatIsNotThereIsNull) {
    EXPECT_TRUE(document_.RootElement().IsElementNull());
    ASSERT_EQ(Load("<a><b/></a>"), 0);
    const QxXmlElement root = document_.RootElement();
    EXPECT_TRUE(root.FirstNode("B").IsElementNull());
    EXPECT_TRUE(root.FirstNode("").IsElementNull());
    EXPECT_TRUE(root.FirstNode("c").FirstNode("d").IsElementNull());
    EXPECT_TRUE(root.FirstNode("b").FirstAttribute("value").IsAttributeNull());
    EXPECT_EQ(root.FirstNode("b").FirstAttribute("value").Value(), "");
    EXPECT_TRUE(QxXmlElement().FirstAttribute("x").IsAttributeNull());
    EXPECT_EQ(QxXmlElement().Name(), "");
}

TEST_F(XmlTest, OtherScriptsArriveAsUtf8) {
    ASSERT_EQ(Load("<a><b value='\xE6\x97\xA5\xF0\x9F\x98\x80'/></a>"), 0);
    EXPECT_EQ(document_.RootElement().FirstNode("b").FirstAttribute("value").Value(), "\xE6\x97\xA5\xF0\x9F\x98\x80");
    ASSERT_EQ(Load("\xEF\xBB\xBF<a/>"), 0);
    EXPECT_EQ(document_.RootElement().Name(), "a");
    std::string wide = "\xFF\xFE";
    for (const char c : std::string("<a b='c'/>")) {
        wide += c;
        wide += '\0';
    }
    ASSERT_EQ(Load(wide), 0);
    EXPECT_EQ(document_.RootElement().FirstAttribute("b").Value(), "c");
}

TEST_F(XmlTest, AnEmptyFileIsReadAndHasNoRoot) {
    for (const char* blank : {"", " \r\n\t", "\xEF\xBB\xBF"}) {
        EXPECT_EQ(Load("<a/>"), 0);
        EXPECT_EQ(Load(blank), 0);
        EXPECT_TRUE(document_.RootElement().IsElementNull());
    }
}

TEST_F(XmlTest, AMissingFileOrAFolderGivesTheSystemsError) {
    EXPECT_EQ(Load("<a/>"), 0);
    EXPECT_EQ(document_.LoadFile(suite::ToUtf8((folder_.Path() / L"missing.xml").wstring())), ERROR_FILE_NOT_FOUND);
    EXPECT_TRUE(document_.RootElement().IsElementNull());
    EXPECT_NE(document_.LoadFile(suite::ToUtf8(folder_.Path().wstring())), 0);
    EXPECT_NE(document_.LoadFile(""), 0);
    EXPECT_NE(document_.LoadFile("C:\\\xFF\xFE*?\"<>|"), 0);
}

TEST_F(XmlTest, BrokenTextIsRefused) {
    for (const char* text :
         {"<a>", "<a><b></a></b>", "<a", "<a b=c/>", "<a b='1' b='2'/>", "<a/><b/>", "text", "<a/>text", "</a>",
          "<a>&nothing;</a>", "<a>]]></b>", "<1a/>", "<a b='<'/>", "<!-- only -->", "<?xml version='1.0'?>",
          "<a><![CDATA[", "{\"json\":1}", "MZ\x90", "<a>\x01</a>"}) {
        ExpectRefused(text);
    }
}

TEST_F(XmlTest, EveryTruncationIsRefused) {
    const std::string whole = "<?xml version='1.0'?><a x='1'><b value=\"2\"/><c>text</c></a>";
    ASSERT_EQ(Load(whole), 0);
    for (std::size_t length = 1; length < whole.size(); ++length) {
        ExpectRefused(whole.substr(0, length));
    }
}

TEST_F(XmlTest, ZeroBytesAndWrongEncodingsAreRefused) {
    ExpectRefused(std::string("<a>\0</a>", 8));
    ExpectRefused(std::string("<a/>\0\0", 6));
    ExpectRefused(std::string(4096, '\0'));
    ExpectRefused("<a b='\xFF'/>");
    ExpectRefused("<a b='\xC0\xAF'/>");
    ExpectRefused("<?xml version='1.0' encoding='no-such-encoding'?><a/>");
    ExpectRefused(std::string("\xFF\xFE<\0a\0", 6));
}

TEST_F(XmlTest, DocumentTypesAndEntitiesAreRefused) {
    ExpectRefused("<!DOCTYPE a><a/>");
    ExpectRefused("<!DOCTYPE a [<!ENTITY e 'x'>]><a b='&e;'/>");
    ExpectRefused("<!DOCTYPE a SYSTEM 'file:///C:/windows/win.ini'><a/>");
    ExpectRefused("<!DOCTYPE a [<!ENTITY e SYSTEM 'file:///C:/windows/win.ini'>]><a>&e;</a>");
    std::string bomb = "<!DOCTYPE a [<!ENTITY e0 'boom'>";
    for (int i = 1; i < 30; ++i) {
        bomb += "<!ENTITY e" + std::to_string(i) + " '" + Repeat("&e" + std::to_string(i - 1) + ";", 10) + "'>";
    }
    ExpectRefused(bomb + "]><a>&e29;</a>");
}

TEST_F(XmlTest, TheLimitsHold) {
    EXPECT_EQ(Load(Repeat("<a>", 64) + Repeat("</a>", 64)), 0);
    ExpectRefused(Repeat("<a>", 65) + Repeat("</a>", 65));
    ExpectRefused(Repeat("<a>", 100'000));
    EXPECT_EQ(Load("<r>" + Repeat("<a/>", 9'999) + "</r>"), 0);
    ExpectRefused("<r>" + Repeat("<a/>", 10'000) + "</r>");
    EXPECT_EQ(Load("<r>" + std::string(1024 * 1024 - 7, ' ') + "</r>"), 0);
    ExpectRefused("<r>" + std::string(1024 * 1024 - 6, ' ') + "</r>");
    ExpectRefused("<r>" + std::string(20 * 1024 * 1024, ' ') + "</r>");
    ExpectRefused(std::string(2 * 1024 * 1024, ' '));
}

TEST_F(XmlTest, LoadingAgainForgetsTheFirstFile) {
    ASSERT_EQ(Load("<a/>"), 0);
    ASSERT_EQ(Load("<b/>"), 0);
    EXPECT_EQ(document_.RootElement().Name(), "b");
    ExpectRefused("<c>");
}

TEST(FileInfoTest, NamesFilesBesideTheProgram) {
    const std::string program = suite::ToUtf8(suite::ProgramPath());
    EXPECT_EQ(FileInfo::GetSelfFullFilePath("suite_xml_test.exe"), program);
    EXPECT_THAT(FileInfo::GetSelfFullFilePath("plugins\\\xC3\xA4.xml"), testing::EndsWith("\\plugins\\\xC3\xA4.xml"));
}
