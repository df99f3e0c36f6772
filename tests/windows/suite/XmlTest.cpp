#include "suite/xml/QxXMLDocument.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <fstream>

#include "suite/common/LocalFolder.h"
#include "suite/common/Utf8.h"
#include "suite/xml/FileInfo.h"
#include "tests/windows/suite/TestFolder.h"

using namespace std::string_literals;
namespace fs = std::filesystem;

namespace {

constexpr int kMebibyte = 1024 * 1024;

class XmlTest : public testing::Test {
  protected:
    std::string Path() const { return suite::ToUtf8((folder_.Path() / L"\u914d\u7f6e.xml").wstring()); }

    int Load(const std::string& bytes) {
        std::ofstream(fs::path(suite::FromUtf8(Path())), std::ios::binary | std::ios::trunc)
            .write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        return document_.LoadFile(Path());
    }
    QxXmlElement Root() const { return document_.RootElement(); }

    // Loads, and gives the attribute "value" of root -> "E".
    std::string ValueOfE(const std::string& bytes) {
        EXPECT_EQ(Load(bytes), 0);
        const QxXmlAttribute attribute = Root().FirstNode("E").FirstAttribute("value");
        EXPECT_FALSE(attribute.IsAttributeNull());
        return attribute.Value();
    }

    void ExpectRefused(const std::string& bytes) {
        ASSERT_EQ(Load("<before/>"), 0);
        EXPECT_NE(Load(bytes), 0) << bytes.substr(0, 200);
        EXPECT_TRUE(Root().IsElementNull()) << bytes.substr(0, 200);
    }

    void ExpectNoRoot(const std::string& bytes) {
        ASSERT_EQ(Load("<before/>"), 0);
        EXPECT_EQ(Load(bytes), 0) << bytes;
        EXPECT_TRUE(Root().IsElementNull()) << bytes;
    }

    TestFolder folder_;
    QxXMLDocument document_;
};

std::string Nested(int levels) {
    std::string begin;
    std::string end;
    for (int i = 0; i < levels; ++i) {
        begin += "<a>";
        end += "</a>";
    }
    return begin + end;
}

std::string Utf16(const std::string& ascii, bool bigEndian) {
    std::string bytes = bigEndian ? "\xFE\xFF" : "\xFF\xFE";
    for (const char letter : ascii) {
        bytes += bigEndian ? std::string{'\0', letter} : std::string{letter, '\0'};
    }
    return bytes;
}

}  // namespace

TEST_F(XmlTest, WalksTheElementsByName) {
    ASSERT_EQ(Load("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\r\n<!-- c -->\r\n<Config>\n"
                   "  <P-1.x><Other value='7'/></P-1.x>\n"
                   "  <Default>text<BackgroudImage value='1' more=\"&lt;&quot;&#x65e5;\"/><BackgroudImage value='2'/>"
                   "</Default><Default><Second/></Default><empty></empty>\n</Config>\n<!-- end -->\n"),
              0);
    EXPECT_EQ(Root().Name(), "Config");
    const QxXmlElement image = Root().FirstNode("Default").FirstNode("BackgroudImage");
    ASSERT_FALSE(image.IsElementNull());
    EXPECT_EQ(image.Name(), "BackgroudImage");
    EXPECT_EQ(image.FirstAttribute("value").Value(), "1");
    EXPECT_EQ(image.FirstAttribute("more").Value(), "<\"\xE6\x97\xA5");
    EXPECT_FALSE(image.FirstAttribute("value").IsAttributeNull());
    EXPECT_TRUE(image.FirstAttribute("Value").IsAttributeNull());
    EXPECT_TRUE(image.FirstAttribute("none").IsAttributeNull());
    EXPECT_EQ(image.FirstAttribute("none").Value(), "");
    EXPECT_EQ(Root().FirstNode("P-1.x").FirstNode("Other").FirstAttribute("value").Value(), "7");
    EXPECT_TRUE(Root().FirstNode("default").IsElementNull());
    EXPECT_TRUE(Root().FirstNode("Default").FirstNode("Second").IsElementNull());
    EXPECT_TRUE(Root().FirstNode("BackgroudImage").IsElementNull());
    EXPECT_FALSE(Root().FirstNode("empty").IsElementNull());
    EXPECT_TRUE(Root().FirstNode("").IsElementNull());
}

TEST_F(XmlTest, NullHandlesAnswerNull) {
    const QxXmlElement null = document_.RootElement();
    EXPECT_TRUE(null.IsElementNull());
    EXPECT_EQ(null.Name(), "");
    EXPECT_TRUE(null.FirstNode("a").FirstNode("b").IsElementNull());
    EXPECT_TRUE(null.FirstAttribute("a").IsAttributeNull());
    EXPECT_EQ(null.FirstAttribute("a").Value(), "");
}

TEST_F(XmlTest, AFileWithoutARootElementIsLoaded) {
    ExpectNoRoot("");
    ExpectNoRoot("  \r\n\t ");
    ExpectNoRoot("\xEF\xBB\xBF");
    ExpectNoRoot("<?xml version=\"1.0\"?>\n");
    ExpectNoRoot("<?xml version=\"1.0\" encoding=\"UTF-8\"?><!-- nothing -->");
    ExpectNoRoot("<!-- nothing -->");
    ExpectNoRoot(Utf16("<!-- nothing -->", false));
    ExpectNoRoot("\xFF\xFE"s);
}

TEST_F(XmlTest, EveryUnicodeEncodingIsRead) {
    const std::string text = "<r><E value='12'/></r>";
    EXPECT_EQ(ValueOfE(text), "12");
    EXPECT_EQ(ValueOfE("\xEF\xBB\xBF" + text), "12");
    EXPECT_EQ(ValueOfE(Utf16(text, false)), "12");
    EXPECT_EQ(ValueOfE(Utf16("<?xml version=\"1.0\" encoding=\"UTF-16\"?>" + text, false)), "12");
    EXPECT_EQ(ValueOfE("<r><E value='\xF0\x9F\x98\x80'/></r>"), "\xF0\x9F\x98\x80");
}

TEST_F(XmlTest, WhatIsNotWellFormedIsRefused) {
    for (const char* text : {"<",
                             "<a",
                             "<a x",
                             "<a x=",
                             "<a x='",
                             "<a x='1",
                             "<a x='1'",
                             "<a>",
                             "<a><b>",
                             "<a><b></b>",
                             "<a><b></a></b>",
                             "<a></b>",
                             "</a>",
                             "<a x=1/>",
                             "<a x='<'/>",
                             "<a/><b/>",
                             "<a/>text",
                             "text",
                             "text<a/>",

                             "<a/",

                             "<a x='&none;'/>",
                             "<a x='&#0;'/>",
                             "<!-- open",
                             "<?xml version='1.0'",
                             "<a><![CDATA[x</a>",
                             "<a><?x",
                             "<?x",
                             "<a/><?x",
                             "<a/><!--",
                             "<a/><!-- x -",
                             "<a><![CDATA[x]]",
                             "<a/><",
                             "<a></a></a>",
                             "{}"}) {
        ExpectRefused(text);
    }
    ExpectRefused("\xEF\xBB\xBF<");
}

TEST_F(XmlTest, EveryTruncationIsRefused) {
    const std::string whole = "<?xml version='1.0'?><Config><Default><Image value='1'/></Default></Config>";
    ASSERT_EQ(Load(whole), 0);
    const std::size_t prolog = whole.find("<Config");
    for (std::size_t length = 1; length < whole.size(); ++length) {
        if (length == prolog) {
            ExpectNoRoot(whole.substr(0, length));
        } else {
            ExpectRefused(whole.substr(0, length));
        }
    }
}

TEST_F(XmlTest, DocumentTypesAreRefused) {
    ExpectRefused("<!DOCTYPE a><a/>");
    ExpectRefused("<!DOCTYPE a [<!ELEMENT a EMPTY>]><a/>");
    ExpectRefused("<!DOCTYPE a SYSTEM 'file:///C:/windows/win.ini'><a/>");
    ExpectRefused("<!DOCTYPE a [<!ENTITY e SYSTEM 'file:///C:/windows/win.ini'>]><a x='&e;'>&e;</a>");
    std::string bomb = "<!DOCTYPE a [<!ENTITY e0 'x'>";
    for (int i = 1; i < 30; ++i) {
        const std::string before = "&e" + std::to_string(i - 1) + ";";
        bomb += "<!ENTITY e" + std::to_string(i) + " '" + before + before + "'>";
    }
    ExpectRefused(bomb + "]><a x='&e29;'>&e29;</a>");
}

TEST_F(XmlTest, NestingHasALimit) {
    EXPECT_EQ(Load(Nested(64)), 0);
    ExpectRefused(Nested(65));
    ExpectRefused(Nested(100'000));
}

TEST_F(XmlTest, TheNumberOfElementsHasALimit) {
    std::string most = "<r>";
    for (int i = 0; i < 9'998; ++i) {
        most += "<e/>";
    }
    EXPECT_EQ(Load(most + "<last/></r>"), 0);
    EXPECT_FALSE(Root().FirstNode("last").IsElementNull());
    ExpectRefused(most + "<last/><e/></r>");
}

TEST_F(XmlTest, TheSizeHasALimit) {
    const std::string element = "<r><E value='1'/></r>";
    const std::string most = element + std::string(kMebibyte - element.size(), ' ');
    EXPECT_EQ(ValueOfE(most), "1");
    ExpectRefused(most + " ");
    const std::string value(kMebibyte - 100, 'v');
    EXPECT_TRUE(ValueOfE("<r><E value='" + value + "'/></r>") == value);
}

TEST_F(XmlTest, BytesThatAreNoTextAreRefused) {
    ExpectRefused("\0"s);
    ExpectRefused(std::string(4096, '\0'));
    ExpectRefused("<r>\0</r>"s);
    ExpectRefused("<r><E value='1\0'/></r>"s);
    ExpectRefused("<r><E\0value='1'/></r>"s);
    ExpectRefused("<r><E value='\x01'/></r>");
    ExpectRefused("<r/>\0"s);
    ExpectRefused("MZ\x90\0\x03\0\0\0\x04\0\0\0\xFF\xFF"s);
    ExpectRefused("<?xml version='1.0' encoding='no-such-encoding'?><r/>");
}

TEST_F(XmlTest, LongTextOfAnyScriptIsRead) {
    const std::string letters = "\xC3\xA4\xE6\x97\xA5\xF0\x9F\x98\x80";
    for (int shift = 0; shift < 4; ++shift) {
        std::string value(shift, 'x');
        for (int i = 0; i < 20'000; ++i) {
            value += letters + (i % 40 == 0 ? " " : "");
        }
        EXPECT_TRUE(ValueOfE("<r><E value='" + value + "'/></r>") == value);
    }
}

TEST_F(XmlTest, ADocumentCanBeLoadedAgain) {
    EXPECT_EQ(ValueOfE("<r><E value='1'/></r>"), "1");
    EXPECT_EQ(ValueOfE("<r><E value='2'/></r>"), "2");
    EXPECT_EQ(document_.LoadFile(Path() + "x"), ERROR_FILE_NOT_FOUND);
    EXPECT_TRUE(Root().IsElementNull());
}

TEST_F(XmlTest, WhatIsNoReadableFileGivesTheSystemsCode) {
    EXPECT_EQ(document_.LoadFile(Path()), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(document_.LoadFile(Path() + "\\no\\folder.xml"), ERROR_PATH_NOT_FOUND);
    EXPECT_EQ(document_.LoadFile(suite::ToUtf8(folder_.Path().wstring())), ERROR_ACCESS_DENIED);
    EXPECT_NE(document_.LoadFile(""), 0);
    ASSERT_EQ(Load("<a/>"), 0);
    EXPECT_NE(document_.LoadFile(Path() + "\0x"s), 0);
    const suite::Handle holder(CreateFileW(suite::FromUtf8(Path()).c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr,
                                           OPEN_EXISTING, 0, nullptr));
    ASSERT_TRUE(holder);
    EXPECT_EQ(document_.LoadFile(Path()), ERROR_SHARING_VIOLATION);
}

TEST(FileInfoTest, NamesAFileBesideTheProgram) {
    const std::string program = suite::ToUtf8(suite::ProgramPath());
    const std::string folder = program.substr(0, program.rfind('\\'));
    EXPECT_EQ(FileInfo::GetSelfFullFilePath("plugins\\a.xml"), folder + "\\plugins\\a.xml");
    EXPECT_EQ(FileInfo::GetSelfFullFilePath("\\plugins\\a.xml"), folder + "\\plugins\\a.xml");
    EXPECT_EQ(FileInfo::GetSelfFullFilePath("\xE9\x85\x8D.xml"), folder + "\\\xE9\x85\x8D.xml");
    EXPECT_EQ(FileInfo::GetSelfFullFilePath(""), folder + "\\");
    EXPECT_EQ(program, FileInfo::GetSelfFullFilePath(program.substr(folder.size())));
}
