#include "accessibility/LiveAnnotation.h"

namespace DuiLib {
namespace {

// What the headers of some compilers lack.
constexpr GUID kServices = {0xb5f8350b, 0x0548, 0x48b1, {0xa6, 0xee, 0x88, 0xbd, 0x00, 0xb4, 0xa5, 0xe7}};
constexpr GUID kServicesInterface = {0x6e26e776, 0x04f0, 0x495d, {0x80, 0xe4, 0x33, 0x30, 0x35, 0x2e, 0x31, 0x69}};
constexpr GUID kLiveSetting = {0xc12bcd8e, 0x2a8e, 0x4950, {0x8a, 0xe7, 0x36, 0x25, 0x11, 0x1d, 0x58, 0xeb}};

constexpr LONG kPolite = 1;  // after what is being said

}  // namespace

void LiveAnnotation::Mark(HWND window, long element) {
    if (!marked_.insert(element).second) {
        return;
    }
    if (!services_ &&
        FAILED(CoCreateInstance(kServices, nullptr, CLSCTX_INPROC_SERVER, kServicesInterface, services_.PutVoid()))) {
        return;
    }
    VARIANT value;
    VariantInit(&value);
    value.vt = VT_I4;
    value.lVal = kPolite;
    services_->SetHwndProp(window, static_cast<DWORD>(OBJID_CLIENT), static_cast<DWORD>(element), kLiveSetting, value);
}

void LiveAnnotation::ClearAll(HWND window) {
    for (const long element : marked_) {
        if (services_) {
            services_->ClearHwndProps(window, static_cast<DWORD>(OBJID_CLIENT), static_cast<DWORD>(element),
                                      &kLiveSetting, 1);
        }
    }
    marked_.clear();
    services_.Reset();
}

}  // namespace DuiLib
