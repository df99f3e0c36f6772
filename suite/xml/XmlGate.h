#pragma once
// Decides whether a text may be handed to the system's XML reader.
//
// Why before the reader and not by it: not every system's reader stands up to text from outside. One of them waits for
// ever when a text node is cut off, ends the process after a lone declaration, and takes undefined entities and doubled
// attributes. So what is not well-formed, declares a document type or passes a limit is refused here. Names, values and
// entities are left to the reader; nothing is parsed into anything. Pure logic. Any thread. May throw std::bad_alloc.
#include <cstddef>
#include <string_view>

namespace suite {

inline constexpr std::size_t kMostXmlBytes = 1024 * 1024;
inline constexpr std::size_t kMostXmlLevels = 64;
inline constexpr std::size_t kMostXmlElements = 10'000;

enum class XmlVerdict {
    kSound,    // one root element; UTF-8, or UTF-16 with its mark
    kBlank,    // nothing but white space
    kBroken,   // not well-formed, or in another encoding
    kRefused,  // a document type, or past a limit
};

XmlVerdict JudgeXml(std::string_view bytes);

}  // namespace suite
