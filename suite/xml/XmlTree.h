#pragma once
// The elements of one XML text, as the document class keeps them, and the reading of the text by the system's reader.
//
// What comes from outside is judged first (XmlGate.h); the reader only ever sees sound text.
// Texts between the elements are left out: no caller asks for them. Nothing of the system's reader stays alive.
// Any thread; XmlLite needs no COM initialisation.
#include <windows.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace suite {

struct XmlTree {
    std::string name;
    std::vector<std::pair<std::string, std::string>> attributes;
    std::vector<std::unique_ptr<XmlTree>> children;
};

// S_OK with the root element, or with none for a text of nothing but blanks; else why the text was refused.
// May throw std::bad_alloc.
HRESULT ReadXml(const std::string& bytes, std::unique_ptr<XmlTree>& root);

}  // namespace suite
