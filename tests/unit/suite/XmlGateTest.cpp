#include "suite/xml/XmlGate.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

using suite::XmlVerdict;

using namespace std::string_literals;

namespace {

XmlVerdict Judge(const std::string& bytes) {
    return suite::JudgeXml(bytes).verdict;
}

const std::string kWhole =
    "<?xml version='1.0' encoding=\"UTF-8\"?>\n<!-- a - b -->\n<a x='1' y = \"&lt;&#65;&#x41;\"><?p q?><b "
    "value=\"2>\"/>"
    "<c>text &amp; <![CDATA[<&]]></c>\n<d:e\xC3\xA4 f.g-h_='\xE6\x97\xA5'></d:e\xC3\xA4 ></a>\n<!---->";

std::string Utf16(const std::string& ascii, bool bigEndian) {
    std::string bytes = bigEndian ? "\xFE\xFF" : "\xFF\xFE";
    for (const char c : ascii) {
        bytes += bigEndian ? std::string{'\0', c} : std::string{c, '\0'};
    }
    return bytes;
}

std::string Repeat(const std::string& text, int times) {
    std::string all;
    for (int i = 0; i < times; ++i) {
        all += text;
    }
    return all;
}

}  // namespace

TEST(XmlGateTest, SoundTextPasses) {
    for (const std::string& text :
         {kWhole, std::string("<a/>"), std::string("<a></a>"), std::string(" \n<a\t/>\r\n"),
          std::string("\xEF\xBB\xBF<a/>"), std::string("<a b=''/>"), std::string("<a b='\"' c=\"'\"/>"),
          std::string("<a>></a>"), std::string("<a>\xEF\xBF\xBD</a>"), std::string("<a>]]</a>"),
          Utf16("<a b='c'/>", false), Utf16("<a b='c'/>", true)}) {
        EXPECT_EQ(Judge(text), XmlVerdict::kSound) << text;
    }
}

TEST(XmlGateTest, TextWithoutARootElementIsTold) {
    for (const char* text : {"", " ", "\r\n\t ", "\xEF\xBB\xBF", "\xEF\xBB\xBF\n", "\xFF\xFE", "<?xml version='1.0'?>",
                             "<?x?>", "<!-- only -->", "<?xml version='1.0'?>\n<!-- only -->\n"}) {
        EXPECT_EQ(Judge(text), XmlVerdict::kRootless) << text;
    }
}

TEST(XmlGateTest, BrokenTextIsTold) {
    for (const char* text : {"<a>",
                             "</a>",
                             "<a></b>",
                             "<a><b></a></b>",
                             "<a/><b/>",
                             "<a/>x",
                             "x<a/>",
                             "x",
                             "<",
                             "< a/>",
                             "<a",
                             "<a /",
                             "<a/ >",
                             "<a b/>",
                             "<a b=/>",
                             "<a b=c/>",
                             "<a b='c/>",
                             "<a b='<'/>",
                             "<a b='1'c='2'/>",
                             "<a b='1' b='2'/>",
                             "<1/>",
                             "<a>]]></a>",
                             "<a>&</a>",
                             "<a>&amp</a>",
                             "<a>&;</a>",
                             "<a>&nothing;</a>",
                             "<a>&#;</a>",
                             "<a>&#x;</a>",
                             "<a>&#0;</a>",
                             "<a>&#xFFFF;</a>",
                             "<a>&#1114112;</a>",
                             "<a>&#99999999999999999999;</a>",
                             "<a>&#xFFFFFFFFFFFFFFFFFFFF;</a>",
                             "<a>&#1a;</a>",
                             "<a b='&x;'/>",
                             "<a><![CDATA[</a>",
                             "<![CDATA[x]]><a/>",
                             "<!-- x --",
                             "<!-- a -- b --><a/>",
                             "<!-->",
                             "<?",
                             "<?x",
                             "<?\?><a/>",
                             "<a/></a>",
                             "<a>\x01</a>",
                             "<a b='\xFF'/>",
                             "<a b='\xC0\xAF'/>",
                             "<a>\xED\xA0\x80</a>",
                             "<a>\xEF\xBF\xBF</a>",
                             "<a\xE2\x82/>",
                             "{\"json\":1}",
                             "\xFF\xFE<",
                             "\xEF\xBB\xBF\xEF\xBB\xBF<a/>",
                             "MZ\x90"}) {
        EXPECT_EQ(Judge(text), XmlVerdict::kBroken) << text;
    }
    for (const char* late : {" <?xml version='1.0'?><a/>", "<!----><?xml version='1.0'?><a/>", "<a><?xml?></a>"}) {
        EXPECT_EQ(Judge(late), XmlVerdict::kBroken) << late;
    }
    EXPECT_EQ(Judge(std::string("<a>\0</a>", 8)), XmlVerdict::kBroken);
    EXPECT_EQ(Judge(std::string("<a/>\0", 5)), XmlVerdict::kBroken);
    EXPECT_EQ(Judge(std::string(5000, '\0')), XmlVerdict::kBroken);
    EXPECT_EQ(Judge(Utf16("<a/>", false) + std::string("\x00\xD8", 2)), XmlVerdict::kBroken);
}

TEST(XmlGateTest, DocumentTypesAreRefused) {
    EXPECT_EQ(Judge("<!DOCTYPE a><a/>"), XmlVerdict::kRefused);
    EXPECT_EQ(Judge("<?xml version='1.0'?>\n<!DOCTYPE a [<!ENTITY e 'x'>]><a>&e;</a>"), XmlVerdict::kRefused);
    EXPECT_EQ(Judge("<a><!ELEMENT b></a>"), XmlVerdict::kRefused);
}

TEST(XmlGateTest, TheLimitsHold) {
    EXPECT_EQ(Judge(Repeat("<a>", 64) + Repeat("</a>", 64)), XmlVerdict::kSound);
    EXPECT_EQ(Judge(Repeat("<a>", 65) + Repeat("</a>", 65)), XmlVerdict::kRefused);
    EXPECT_EQ(Judge("<r>" + Repeat("<a/>", 9'999) + "</r>"), XmlVerdict::kSound);
    EXPECT_EQ(Judge("<r>" + Repeat("<a/>", 10'000) + "</r>"), XmlVerdict::kRefused);
    EXPECT_EQ(Judge("<r>" + std::string(1024 * 1024 - 7, ' ') + "</r>"), XmlVerdict::kSound);
    EXPECT_EQ(Judge("<r>" + std::string(1024 * 1024 - 6, ' ') + "</r>"), XmlVerdict::kRefused);
    std::string attributes;
    for (int i = 0; i < 257; ++i) {
        attributes += " a" + std::to_string(i) + "=''";
    }
    EXPECT_EQ(Judge("<a" + attributes + "/>"), XmlVerdict::kRefused);
}

TEST(XmlGateTest, SoundTextIsGivenAsUtf8) {
    EXPECT_EQ(suite::JudgeXml("\xEF\xBB\xBF \n<a b='\xE6\x97\xA5'/>\n").utf8, "<a b='\xE6\x97\xA5'/>\n");
    EXPECT_EQ(suite::JudgeXml(Utf16(" <a b='c'/>", false)).utf8, "<a b='c'/>");
    EXPECT_EQ(suite::JudgeXml(Utf16("<a b='c'/>", true)).utf8, "<a b='c'/>");
    EXPECT_EQ(suite::JudgeXml("\xFF\xFE<\0a\0/\0>\0=\xD8\0\xDE"s).utf8, "");
    EXPECT_EQ(suite::JudgeXml("<a>").utf8, "");
}

TEST(XmlGateTest, EveryTruncationIsTold) {
    const std::size_t begin = kWhole.find("<a");
    const std::size_t end = kWhole.find("</a>") + 4;
    for (std::size_t length = 1; length < end; ++length) {
        const bool rootless = length <= begin && (kWhole[length - 1] == '>' || kWhole[length - 1] == '\n');
        EXPECT_EQ(Judge(kWhole.substr(0, length)), rootless ? XmlVerdict::kRootless : XmlVerdict::kBroken)
            << kWhole.substr(0, length);
    }
    EXPECT_EQ(Judge(kWhole.substr(0, end)), XmlVerdict::kSound);
}

// Under the sanitizers: no text makes the walk read past its end or go on for ever.
TEST(XmlGateTest, AnyDamageIsSurvived) {
    std::mt19937 random(1);
    const std::string pieces[] = {"<", ">", "/", "<!", "]]>", "--", "&", ";", "'", "\"", "=", "<?", "?>", "\xE6", "#x"};
    int sound = 0;
    for (int round = 0; round < 20'000; ++round) {
        std::string text = kWhole;
        for (unsigned change = random() % 4 + 1; change > 0; --change) {
            const std::size_t place = random() % text.size();
            switch (random() % 3) {
                case 0:
                    text[place] = static_cast<char>(random());
                    break;
                case 1:
                    text.insert(place, pieces[random() % std::size(pieces)]);
                    break;
                default:
                    text.erase(place, random() % 8);
            }
        }
        sound += Judge(text) == XmlVerdict::kSound;
    }
    EXPECT_GT(sound, 0);
}
