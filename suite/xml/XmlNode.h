#pragma once
// One element of a loaded document, with everything below it. Constant once it is loaded; any thread may read it.
#include <memory>
#include <string>
#include <utility>
#include <vector>

struct QxXmlNode {
    std::string name;
    std::vector<std::pair<std::string, std::string>> attributes;  // in the order of the file
    std::vector<std::unique_ptr<QxXmlNode>> children;
};
