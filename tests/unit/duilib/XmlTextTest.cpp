#include "markup/XmlText.h"

#include <gtest/gtest.h>

namespace DuiLib {
namespace {

TEST(XmlText, SoundTextStays) {
    const XmlText text = PrepareXml("<a b='1'>\n  <c/>x &lt; y\n</a>\n");
    EXPECT_EQ(text.ascii, "<a b='1'>\n  <c/>x &lt; y\n</a>");
    EXPECT_TRUE(text.hasElement && text.finished && text.validUtf8);
    EXPECT_EQ(text.lineCount, 4u);
}

TEST(XmlText, CharactersBeyondAsciiBecomeReferences) {
    EXPECT_EQ(PrepareXml("<a b='\xC3\xA4'>\xE4\xB8\xAD\xF0\x9F\x98\x80</a>").ascii,
              "<a b='&#xE4;'>&#x4E2D;&#x1F600;</a>");
    EXPECT_TRUE(PrepareXml("<a>\xEF\xBF\xBD</a>").validUtf8);
}

TEST(XmlText, WhatIsNotUtf8IsReplacedAndSaid) {
    for (const char* bytes : {"\xFF", "\xC3", "\xED\xA0\x80", "\x80"}) {
        const XmlText text = PrepareXml(std::string("<a>") + bytes + "</a>");
        EXPECT_TRUE(text.ascii.starts_with("<a>&#xFFFD;"));
        EXPECT_FALSE(text.validUtf8);
    }
}

TEST(XmlText, CommentsAndInstructionsLeaveTheirLines) {
    EXPECT_EQ(PrepareXml("\xEF\xBB\xBF<?xml version='1.0'\n?><!-- <a> \n > --><b/><!-- -->").ascii, "\n\n<b/>");
}

TEST(XmlText, CDataBecomesText) {
    EXPECT_EQ(PrepareXml("<a>x<![CDATA[<b> & \xC3\xA4]]>y</a>").ascii, "<a>x&lt;b&gt; &amp; &#xE4;y</a>");
}

TEST(XmlText, ABracketWithinQuotesEndsNothing) {
    const XmlText text = PrepareXml("<a b='>' c=\"'>\">x</a>");
    EXPECT_EQ(text.ascii, "<a b='>' c=\"'>\">x</a>");
    EXPECT_TRUE(text.finished);
}

// Cut anywhere, the text is finished for the reader: elements that were open are closed.
TEST(XmlText, EveryBeginningIsFinished) {
    const std::string whole = "<?xml version='1.0'?><!-- c --><a x='<>'><b><![CDATA[x]]>text<c/></b><!-- d --></a>";
    for (std::size_t length = 0; length < whole.size(); ++length) {
        const XmlText text = PrepareXml(whole.substr(0, length));
        if (text.hasElement) {
            EXPECT_FALSE(text.finished) << length;
            EXPECT_TRUE(text.ascii.ends_with("</a>")) << text.ascii;
        }
    }
    EXPECT_TRUE(PrepareXml(whole).finished);
}

TEST(XmlText, TextAfterTheEndIsCutOffAndSaid) {
    for (const char* xml : {"<a/> junk", "<a/><![CDATA[junk]]>"}) {
        const XmlText text = PrepareXml(xml);
        EXPECT_EQ(text.ascii, "<a/>");
        EXPECT_FALSE(text.finished);
    }
}

TEST(XmlText, NothingIsNoElement) {
    for (const char* nothing : {"", " ", "text", "<!-- a -->", "<?xml version='1.0'?>", "<", "</a>", "<!DOCTYPE a>"}) {
        EXPECT_FALSE(PrepareXml(nothing).hasElement) << nothing;
    }
}

}  // namespace
}  // namespace DuiLib
