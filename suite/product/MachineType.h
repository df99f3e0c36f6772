#pragma once
// Which machine this is, by the name that configuration files are keyed with. Any thread. Nothing throws.
#include <string>

#include "suite/product/Export.h"

namespace ProductAdapt {

class SUITE_PRODUCT_API MachineType {
  public:
    // The product name of the machine's firmware as an XML element name: everything but ASCII letters, digits, '_', '-'
    // and '.' is removed, and a name that begins with a digit, '-' or '.' gets '_' in front. "82A1 Pro 14" gives
    // "_82A1Pro14". Empty when the firmware gives none.
    static std::string GetProductName();
};

}  // namespace ProductAdapt
