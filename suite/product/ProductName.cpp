#include "suite/product/ProductName.h"

namespace suite {

namespace {

bool IsLetter(char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

bool IsKept(char c) {
    return IsLetter(c) || (c >= '0' && c <= '9') || c == '_' || c == '-' || c == '.';
}

}  // namespace

std::string ElementNameOf(std::string_view firmwareName) {
    std::string name;
    for (const char c : firmwareName) {
        if (!IsKept(c)) {
            continue;
        }
        if (name.empty() && !IsLetter(c) && c != '_') {
            name = "_";
        }
        name += c;
    }
    return name;
}

}  // namespace suite
