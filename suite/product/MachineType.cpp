#include "suite/product/MachineType.h"

#include "suite/common/Utf8.h"
#include "suite/product/ProductName.h"
#include "suite/registry/Registry.h"

namespace ProductAdapt {

std::string MachineType::GetProductName() {
    try {
        std::wstring name;
        DE::Registry::GetValue(HKEY_LOCAL_MACHINE, L"HARDWARE\\DESCRIPTION\\System\\BIOS", L"SystemProductName", name,
                               KEY_QUERY_VALUE);
        return suite::ElementNameOf(suite::ToUtf8(name));
    } catch (...) {
        return {};
    }
}

}  // namespace ProductAdapt
