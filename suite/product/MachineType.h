#pragma once
// Which machine this is, by the name that configuration files are keyed with. Any thread. Nothing throws.
#include <string>

#include "suite/common/Export.h"

namespace ProductAdapt {

class SUITE_PRODUCT_API MachineType {
  public:
    // The product name of the machine's firmware with everything but letters, digits, '_', '-' and '.' removed and,
    // when it does not begin with a letter, an underscore before it (it is used as an XML element name); empty when
    // the firmware gives none.
    static std::string GetProductName();
};

}  // namespace ProductAdapt
