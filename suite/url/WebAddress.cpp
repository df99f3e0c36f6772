#include "suite/url/WebAddress.h"

#include <algorithm>

namespace suite {

namespace {

bool BeginsWith(std::wstring_view text, std::wstring_view lowerCaseStart) {
    const auto equals = [](wchar_t unit, wchar_t lower) {
        return unit == lower || (unit >= L'A' && unit <= L'Z' && unit + (L'a' - L'A') == lower);
    };
    return text.size() >= lowerCaseStart.size() &&
           std::equal(lowerCaseStart.begin(), lowerCaseStart.end(), text.begin(),
                      [&](wchar_t lower, wchar_t unit) { return equals(unit, lower); });
}

bool MayStandInAddress(wchar_t unit) {
    constexpr std::wstring_view kNever = L" \"<>\\^`{|}\u00a0\u2028\u2029\u3000";
    const bool control = unit < 0x20 || (unit >= 0x7F && unit < 0xA0);
    return !control && kNever.find(unit) == std::wstring_view::npos;
}

}  // namespace

bool IsWebAddress(std::wstring_view address) {
    if (address.size() > kLongestAddress || !std::all_of(address.begin(), address.end(), MayStandInAddress)) {
        return false;
    }
    for (const std::wstring_view scheme : {std::wstring_view(L"http://"), std::wstring_view(L"https://")}) {
        if (BeginsWith(address, scheme)) {
            address.remove_prefix(scheme.size());
            return !address.empty() && std::wstring_view(L"/?#:@.").find(address.front()) == std::wstring_view::npos;
        }
    }
    return false;
}

}  // namespace suite
