#include <gmock/gmock.h>
#include <windows.h>

#include <fstream>

#include "suite/common/LocalFolder.h"
#include "suite/common/Utf8.h"
#include "suite/xml/FileInfo.h"
#include "suite/xml/QxXMLDocument.h"
#include "suite/xml/XmlTree.h"
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
    // Also the system's XML reader has not seen it: the fault is not that one's.
    void ExpectRefusedUnread(const std::string& bytes) {
        ExpectRefused(bytes);
        EXPECT_THAT(suite::ToUtf8(suite::ReadXmlText(bytes).fault),
                    testing::AllOf(testing::Ne(""), testing::Not(testing::HasSubstr("XML reader"))))
            << bytes.substr(0, 100);
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

TEST_F(XmlTest, LongTextOfAnyScriptAndEncodingIsRead) {
    const std::string letters = "\xC3\xA4\xE6\x97\xA5\xF0\x9F\x98\x80";
    for (int shift = 0; shift < 4; ++shift) {
        const std::string value = std::string(shift, 'x') + Repeat(Repeat(letters, 40) + ' ', 500);
        ASSERT_EQ(Load("<a><b value='" + value + "'/></a>"), 0);
        EXPECT_TRUE(document_.RootElement().FirstNode("b").FirstAttribute("value").Value() == value);
    }
    for (const bool bigEndian : {false, true}) {
        std::string wide = bigEndian ? "\xFE\xFF" : "\xFF\xFE";
        for (const char c : "<?xml version='1.0' encoding='UTF-16'?><a>" + Repeat("<b/>\n", 5000) + "<c d='e'/></a>") {
            wide += bigEndian ? std::string{'\0', c} : std::string{c, '\0'};
        }
        ASSERT_EQ(Load(wide), 0);
        EXPECT_EQ(document_.RootElement().FirstNode("c").FirstAttribute("d").Value(), "e");
    }
    ASSERT_EQ(Load(" \r\n<a b='c'/>"), 0);
    EXPECT_EQ(document_.RootElement().FirstAttribute("b").Value(), "c");
}

TEST_F(XmlTest, AFileWithoutARootElementIsRead) {
    for (const char* blank : {"", " \r\n\t", "\xEF\xBB\xBF", "<?xml version='1.0'?>",
                              "<?xml version='1.0'?>\n<!-- x -->\n", "<!-- only -->"}) {
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
    const std::string path = suite::ToUtf8((folder_.Path() / L"a.xml").wstring());
    std::ofstream(folder_.Path() / L"a.xml") << "<a/>";
    EXPECT_EQ(document_.LoadFile(path), 0);
    EXPECT_NE(document_.LoadFile(path + std::string("\0.txt", 5)), 0);
    const suite::Handle holder(
        CreateFileW((folder_.Path() / L"a.xml").c_str(), GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr));
    EXPECT_EQ(document_.LoadFile(path), ERROR_SHARING_VIOLATION);
}

// Readers take their input in pieces of some thousand bytes.
TEST_F(XmlTest, SoundTextOfAnyShapeAndLengthIsRead) {
    const std::string shapes[] = {"", "\n", "<!-- x -->", "<?p i?>", "\n<!----><?p?>\n", "<!--\xE6\x97\xA5-->"};
    for (const std::string& shape : shapes) {
        for (const int length : {0, 4090, 8180}) {
            for (int more = 0; more < 16; ++more) {
                const std::string text = "<?p i?>" + shape + "<a><![CDATA[<&]]>&lt;<b c='1>'></b><?p?><!-- - -->" +
                                         std::string(length + more, ' ') + "<d e=\"'\xC3\xA4\"/></a>" + shape;
                ASSERT_EQ(Load(text), 0) << shape << length + more;
                EXPECT_EQ(document_.RootElement().FirstNode("b").FirstAttribute("c").Value(), "1>");
                EXPECT_EQ(document_.RootElement().FirstNode("d").FirstAttribute("e").Value(), "'\xC3\xA4");
            }
        }
    }
}

TEST_F(XmlTest, BrokenTextIsRefused) {
    for (const char* text : {"<a>", "<a><b></a></b>", "<a", "<a b=c/>", "<a b='1' b='2'/>", "<a/><b/>", "text",
                             "<a/>text", "</a>", "<a>&nothing;</a>", "<a>]]></b>", "<1a/>", "<a b='<'/>",
                             "<a><![CDATA[", "{\"json\":1}", "MZ\x90", "<a>\x01</a>"}) {
        ExpectRefused(text);
    }
}

TEST_F(XmlTest, EveryTruncationIsRefused) {
    const std::string declaration = "<?xml version='1.0'?>";
    const std::string whole = declaration + "<a x='1'><b value=\"2\"/><c>text</c></a>";
    ASSERT_EQ(Load(whole), 0);
    for (std::size_t length = 1; length < whole.size(); ++length) {
        if (length != declaration.size()) {
            ExpectRefusedUnread(whole.substr(0, length));
        }
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
    ExpectRefusedUnread("<!DOCTYPE a><a/>");
    ExpectRefusedUnread("<!DOCTYPE a [<!ENTITY e 'x'>]><a b='&e;'/>");
    ExpectRefusedUnread("<!DOCTYPE a SYSTEM 'file:///C:/windows/win.ini'><a/>");
    ExpectRefusedUnread("<!DOCTYPE a [<!ENTITY e SYSTEM 'file:///C:/windows/win.ini'>]><a>&e;</a>");
    std::string bomb = "<!DOCTYPE a [<!ENTITY e0 'boom'>";
    for (int i = 1; i < 30; ++i) {
        bomb += "<!ENTITY e" + std::to_string(i) + " '" + Repeat("&e" + std::to_string(i - 1) + ";", 10) + "'>";
    }
    ExpectRefusedUnread(bomb + "]><a>&e29;</a>");
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

TEST(XmlTreeTest, TextsAndLinesAreThoseOfTheFile) {
    const suite::XmlDocument document = suite::ReadXmlText(
        "\xEF\xBB\xBF\n<!-- one\n -->\n<a x='1' y='&#xE4;'>\n  <b>t<![CDATA[<b>]]>&amp;<c/>\xC3\xA4<!-- --> d</b>\n "
        "<e> "
        "</e>\n</a>");
    ASSERT_TRUE(document.root);
    EXPECT_EQ(document.fault, L"");
    EXPECT_EQ(document.code, static_cast<DWORD>(ERROR_SUCCESS));
    const suite::XmlElement& root = *document.root;
    EXPECT_EQ(root.line, 4u);
    ASSERT_EQ(root.attributes.size(), 2u);
    EXPECT_EQ(root.attributes[0].first, L"x");
    ASSERT_NE(root.Attribute(L"y"), nullptr);
    EXPECT_EQ(*root.Attribute(L"y"), L"\u00e4");
    EXPECT_EQ(root.Attribute(L"z"), nullptr);
    ASSERT_EQ(root.children.size(), 2u);
    EXPECT_EQ(root.children[0].name, L"b");
    EXPECT_EQ(root.children[0].line, 5u);
    EXPECT_EQ(root.children[0].text, L"t<b>&\u00e4 d");
    EXPECT_EQ(root.children[0].children.at(0).name, L"c");
    EXPECT_EQ(root.children[1].line, 6u);
}

TEST(XmlTreeTest, WhatIsSoundBeforeAFaultIsRead) {
    const suite::XmlDocument document = suite::ReadXmlText("<a>\n<b>1</b>\n<c><d e='2'/>\n<f");
    ASSERT_TRUE(document.root);
    EXPECT_EQ(document.fault, L"unexpected end");
    EXPECT_EQ(document.faultLine, 4u);
    EXPECT_EQ(document.code, static_cast<DWORD>(ERROR_XML_PARSE_ERROR));
    ASSERT_EQ(document.root->children.size(), 2u);
    EXPECT_EQ(document.root->children[0].text, L"1");
    EXPECT_EQ(*document.root->children[1].children.at(0).Attribute(L"e"), L"2");
    EXPECT_EQ(suite::ReadXmlText("<!DOCTYPE a><a/>").code, static_cast<DWORD>(ERROR_NOT_SUPPORTED));
    EXPECT_FALSE(suite::ReadXmlText("<!DOCTYPE a><a/>").root);
    EXPECT_EQ(suite::ReadXmlText("<!-- -->").fault, L"no root element");
    EXPECT_EQ(suite::ReadXmlText("<!-- -->").code, static_cast<DWORD>(ERROR_SUCCESS));
}

// The gate takes names more widely than XML has them; the reader is asked, and its answer is told with its line.
TEST(XmlTreeTest, WhatTheReaderRefusesIsTold) {
    const suite::XmlDocument document = suite::ReadXmlText("<?xml version='1.0' encoding='no-such-encoding'?>\n<a/>");
    EXPECT_FALSE(document.root);
    EXPECT_TRUE(document.fault.starts_with(L"refused by the system's XML reader, 0x")) << suite::ToUtf8(document.fault);
    EXPECT_NE(document.code, static_cast<DWORD>(ERROR_SUCCESS));
}

TEST(XmlTreeTest, AFileThatCannotBeReadIsTold) {
    const TestFolder folder;
    const suite::XmlDocument missing = suite::ReadXmlFile((folder.Path() / L"none.xml").wstring());
    EXPECT_EQ(missing.fault, L"cannot be opened, error 2");
    EXPECT_EQ(missing.faultLine, 0u);
    EXPECT_EQ(missing.code, static_cast<DWORD>(ERROR_FILE_NOT_FOUND));
}

// A text may have no ASCII character for longer than a reader's buffer.
TEST(XmlTreeTest, LongTextBeyondAsciiIsReadWhole) {
    for (const char* letter : {"\xC3\xA4", "\xE6\x97\xA5", "\xE6\x97\xA5\xF0\x9F\x98\x80"}) {
        for (int shift = 0; shift < 8; ++shift) {
            const std::string text = std::string(static_cast<std::size_t>(shift), 'x') + Repeat(letter, 20'000);
            const suite::XmlDocument document = suite::ReadXmlText("<a b='" + text + "'>" + text + "</a>");
            ASSERT_TRUE(document.root) << shift;
            EXPECT_TRUE(suite::ToUtf8(document.root->text) == text) << letter << shift;
            EXPECT_TRUE(suite::ToUtf8(*document.root->Attribute(L"b")) == text) << letter << shift;
        }
    }
}

TEST(FileInfoTest, NamesFilesBesideTheProgram) {
    const std::string program = suite::ToUtf8(suite::ProgramPath());
    EXPECT_EQ(FileInfo::GetSelfFullFilePath("suite_xml_test.exe"), program);
    EXPECT_THAT(FileInfo::GetSelfFullFilePath("plugins\\\xC3\xA4.xml"), testing::EndsWith("\\plugins\\\xC3\xA4.xml"));
}
