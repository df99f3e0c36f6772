#include "suite/product/MachineType.h"

#include "suite/registry/Registry.h"

namespace ProductAdapt {

std::string MachineType::GetProductName() {
    std::wstring name;
    DE::Registry::GetValue(HKEY_LOCAL_MACHINE, L"HARDWARE\\DESCRIPTION\\System\\BIOS", L"SystemProductName", name,
                           KEY_QUERY_VALUE);
    std::string result;
    for (const wchar_t c : name) {
        const bool plain = (c >= L'a' && c <= L'z') || (c >= L'A' && c <= L'Z') || (c >= L'0' && c <= L'9');
        if (plain || c == L'_' || c == L'-' || c == L'.') result += static_cast<char>(c);
    }
    return result;
}

}  // namespace ProductAdapt
