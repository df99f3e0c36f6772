#pragma once
// Decides whether a text may be handed to the system's XML reader, and what of it.
//
// Why before the reader and not by it: not every system's reader stands up to text from outside. One of them waits for
// ever when a text node is cut off, ends the process after a lone declaration, and takes undefined entities and doubled
// attributes. So what is not well-formed, declares a document type or passes a limit is refused here. Names, values and
// entities are left to the reader; nothing is parsed into anything. Pure logic. Any thread. May throw std::bad_alloc.
#include <cstddef>
#include <string>
#include <string_view>

namespace suite {

inline constexpr std::size_t kMostXmlBytes = 1024 * 1024;
inline constexpr std::size_t kMostXmlLevels = 64;
inline constexpr std::size_t kMostXmlElements = 10'000;

enum class XmlVerdict {
    kSound,     // one root element; UTF-8, or UTF-16 with its mark
    kRootless,  // well-formed but for its root element: nothing, white space, a declaration, comments
    kBroken,    // not well-formed, or in another encoding
    kRefused,   // a document type, or past a limit
};

// Texts for the reader are in the one form in which every reader takes them: UTF-8 without a byte order mark and
// without white space in front. Comments and instructions leave their line breaks only, CDATA is plain text.
struct XmlJudgement {
    XmlVerdict verdict = XmlVerdict::kBroken;
    std::string utf8;  // empty unless sound
    // Of a text that is broken or refused: its sound beginning, with the elements that were open there closed. Whole
    // tags and the texts between two of them; empty when the root's start tag is not among them.
    std::string beginning;
    unsigned linesBefore = 0;  // of the input, in front of what `utf8` and `beginning` begin with
    std::wstring fault;        // what is wrong, for a log line; empty when sound
    unsigned faultLine = 0;    // from 1; 0 when sound
};

XmlJudgement JudgeXml(std::string_view bytes);

}  // namespace suite
