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

TEST(XmlGateTest, CommentsAndInstructionsLeaveTheirLineBreaks) {
    const auto judged = suite::JudgeXml("<?p?>\n<!-- <a> \n > --><a>x<!--\n\n-->y<?q\n?></a><!-- -->\n");
    EXPECT_EQ(judged.utf8, "<a>x\n\ny\n</a>\n");
    EXPECT_EQ(judged.linesBefore, 2u);
    // The declaration is left to the reader, and what stands behind it with it.
    const auto declared = suite::JudgeXml("<?xml version='1.0'\n?>\n<!-- \n --><a/>");
    EXPECT_EQ(declared.utf8, "<?xml version='1.0'\n?>\n\n<a/>");
    EXPECT_EQ(declared.linesBefore, 0u);
    EXPECT_EQ(suite::JudgeXml("\n\n \n<a/>").linesBefore, 3u);
}

TEST(XmlGateTest, CDataBecomesText) {
    EXPECT_EQ(suite::JudgeXml("<a>x<![CDATA[<b> & \xC3\xA4\n]]>y</a>").utf8, "<a>x&lt;b&gt; &amp; \xC3\xA4\ny</a>");
    EXPECT_EQ(suite::JudgeXml("<a>]]<!-- -->></a>").utf8, "<a>]]&gt;</a>");
    EXPECT_EQ(suite::JudgeXml("<a b='>'>&lt;</a>").utf8, "<a b='>'>&lt;</a>");
}

// A piece of input for the reader must end somewhere.
TEST(XmlGateTest, LongTextsHaveAnAsciiCharacterNowAndThen) {
    const std::string run = Repeat("\xE6\x97\xA5", 499);
    const std::string letter = "\xE6\x97\xA5", reference = "&#26085;";
    EXPECT_EQ(suite::JudgeXml("<a b='" + run + "'/>").utf8, "<a b='" + run + "'/>");
    EXPECT_EQ(suite::JudgeXml("<a>" + run + letter + letter + "x</a>").utf8,
              "<a>" + run + reference + letter + "x</a>");
    EXPECT_EQ(suite::JudgeXml("<a b='" + run + letter + run + letter + "'/>").utf8,
              "<a b='" + run + reference + run + reference + "'/>");
    const std::string beyond16Bits = "\xF0\x9F\x98\x80";
    EXPECT_EQ(suite::JudgeXml("<a>" + run + beyond16Bits + letter + "</a>").utf8,
              "<a>" + run + beyond16Bits + reference + "</a>");
    const std::string name = "<" + Repeat("\xC3\xA4", 499) + "/>";
    EXPECT_EQ(suite::JudgeXml(name).utf8, name);
    const auto longer = suite::JudgeXml("<" + Repeat("\xC3\xA4", 500) + "/>");
    EXPECT_EQ(longer.verdict, XmlVerdict::kRefused);
    EXPECT_EQ(longer.fault, L"more than 499 characters in a name");
}

TEST(XmlGateTest, ADamagedTextIsReadAsFarAsItIsSound) {
    const struct {
        const char* text;
        const char* beginning;
        const wchar_t* fault;
        unsigned line;
    } cases[] = {
        {"<a><b>good</b><b>half", "<a><b>good</b><b></b></a>", L"unexpected end", 1},
        {"<a>\n<b/>\n<c", "<a>\n<b/>\n</a>", L"unexpected end", 3},
        {"<a>\n<b/>\n<c d='1\n\n", "<a>\n<b/>\n</a>", L"unexpected end", 5},
        {"<a><b/>x<!-- \n", "<a><b/>x</a>", L"unexpected end", 2},
        {"<a>x\n<b></c></a>", "<a>x\n<b></b></a>", L"not well-formed XML", 2},
        {"<a>x</a\n b>", "<a>x</a>", L"not well-formed XML", 2},
        {"<a/>\njunk", "<a/>", L"not well-formed XML", 1},
        {"<a/>\n<![CDATA[junk]]>", "<a/>\n", L"not well-formed XML", 2},
        {"<a/><b/>", "<a/>", L"not well-formed XML", 1},
        {"<a>&x;<b/></a>", "<a></a>", L"not well-formed XML", 1},
        {"<a b='1'><c>\n1</c><d\ne='1' e='2'/></a>", "<a b='1'><c>\n1</c></a>", L"not well-formed XML", 3},
        {"<a>x<b>\xFF</b></a>", "<a>x<b></b></a>", L"bytes that are no characters of XML", 1},
        {"<a>x<b c='\n\xFF'/></a>", "<a>x</a>", L"bytes that are no characters of XML", 2},
        {"<a>\n<!DOCTYPE b></a>", "<a>\n</a>", L"a document type", 2},
        {" \n<!-- --><a><b>", "<a><b></b></a>", L"unexpected end", 2},
        {"<?xml version='1.0'?><a>", "<?xml version='1.0'?><a></a>", L"unexpected end", 1},
    };
    for (const auto& c : cases) {
        const suite::XmlJudgement judged = suite::JudgeXml(c.text);
        EXPECT_EQ(judged.beginning, c.beginning) << c.text;
        EXPECT_EQ(judged.fault, c.fault) << c.text;
        EXPECT_EQ(judged.faultLine, c.line) << c.text;
        EXPECT_EQ(judged.utf8, "") << c.text;
    }
    EXPECT_EQ(suite::JudgeXml(" \n<!-- --><a><b>").linesBefore, 1u);
}

TEST(XmlGateTest, NothingSoundIsNoBeginning) {
    for (const char* text : {"<a", "<", "x", "<?xml version='1.0'?>", "<!-- -->", "<!DOCTYPE a><a/>", "</a>", "\xFF",
                             "<?xml version='1.0'?><", "<a b='<'/>"}) {
        EXPECT_EQ(suite::JudgeXml(text).beginning, "") << text;
    }
    EXPECT_EQ(suite::JudgeXml("<a/>").beginning, "");
    EXPECT_EQ(suite::JudgeXml("<a/>").fault, L"");
    EXPECT_EQ(suite::JudgeXml("<a/>").faultLine, 0u);
    EXPECT_EQ(suite::JudgeXml("<!-- -->").fault, L"no root element");
    EXPECT_EQ(suite::JudgeXml("<!-- -->").faultLine, 0u);
}

TEST(XmlGateTest, ALimitKeepsWhatIsBeforeIt) {
    const auto deep = suite::JudgeXml(Repeat("<a>", 65));
    EXPECT_EQ(deep.beginning, Repeat("<a>", 64) + Repeat("</a>", 64));
    EXPECT_EQ(deep.fault, L"more than 64 levels");
    const auto wide = suite::JudgeXml("<r>" + Repeat("<a/>", 10'000) + "</r>");
    EXPECT_EQ(wide.beginning, "<r>" + Repeat("<a/>", 9'999) + "</r>");
    EXPECT_EQ(wide.fault, L"more than 10000 elements");
    std::string attributes;
    for (int i = 0; i < 257; ++i) {
        attributes += " a" + std::to_string(i) + "=''";
    }
    EXPECT_EQ(suite::JudgeXml("<a><b" + attributes + "/></a>").fault, L"more than 256 attributes");
    EXPECT_EQ(suite::JudgeXml("<a><b" + attributes + "/></a>").beginning, "<a></a>");
    const auto large = suite::JudgeXml("<a/>" + std::string(1024 * 1024, ' '));
    EXPECT_EQ(large.fault, L"larger than 1 MiB");
    EXPECT_EQ(large.beginning, "");
}

// Cut off anywhere, what is kept is sound again, and says no more than the whole.
TEST(XmlGateTest, EveryBeginningIsSound) {
    for (std::size_t length = 0; length < kWhole.size(); ++length) {
        const suite::XmlJudgement judged = suite::JudgeXml(kWhole.substr(0, length));
        if (!judged.beginning.empty()) {
            const suite::XmlJudgement again = suite::JudgeXml(judged.beginning);
            EXPECT_EQ(again.verdict, XmlVerdict::kSound) << judged.beginning;
            EXPECT_EQ(again.utf8, judged.beginning);
            EXPECT_NE(judged.beginning.find("</a>"), std::string::npos);
        }
    }
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
