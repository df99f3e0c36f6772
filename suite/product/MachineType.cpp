#include "suite/product/MachineType.h"

#include "suite/product/ProductText.h"
#include "suite/registry/Registry.h"

namespace ProductAdapt {

std::string MachineType::GetProductName() {
    try {
        std::wstring name;
        DE::Registry::GetValue(HKEY_LOCAL_MACHINE, L"HARDWARE\\DESCRIPTION\\System\\BIOS", L"SystemProductName", name,
                               KEY_READ);
        return suite::ElementNameOf(name);
    } catch (...) {
        return {};
    }
}

}  // namespace ProductAdapt
