#pragma once
// From the product name that a machine's firmware gives to the name that configuration files know it by.
// Pure logic. Any thread.
#include <string>
#include <string_view>

namespace suite {

// Letters, digits, '_', '-' and '.' of ASCII are kept, and an underscore is put before a name that begins with none
// of letter and underscore: the result is an XML element name. Empty when nothing is left.
std::string ElementNameOf(std::string_view firmwareName);

}  // namespace suite
