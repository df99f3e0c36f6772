#pragma once
// Reads the bytes of a file as XML and builds the tree of its elements; texts, comments and instructions are dropped.
//
// Why apart: the system's readers are not all equally strict, so what the document promises (no type definitions, the
// limits, one root element that is closed) is checked here as well. Any thread.
#include <windows.h>

#include <cstddef>
#include <memory>
#include <string>

#include "suite/xml/XmlNode.h"

namespace suite {

inline constexpr std::size_t kMostXmlLevels = 64;
inline constexpr std::size_t kMostXmlElements = 10'000;

// S_OK and `root`, which is null when the text ends without a root element; else the reason, and `root` untouched.
// May throw std::bad_alloc.
HRESULT ReadXmlTree(const std::string& bytes, std::unique_ptr<QxXmlNode>& root);

}  // namespace suite
