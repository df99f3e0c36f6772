#include "suite/url/WebAddress.h"

namespace suite {

namespace {

wchar_t LowerAscii(wchar_t c) {
    return c >= L'A' && c <= L'Z' ? static_cast<wchar_t>(c - L'A' + L'a') : c;
}

// Takes the prefix, which is in lower case, off the text.
bool TakePrefix(std::wstring_view& text, std::wstring_view prefix) {
    if (text.size() < prefix.size()) {
        return false;
    }
    for (std::size_t i = 0; i < prefix.size(); ++i) {
        if (LowerAscii(text[i]) != prefix[i]) {
            return false;
        }
    }
    text.remove_prefix(prefix.size());
    return true;
}

bool IsForbidden(wchar_t c) {
    return c <= L' ' || (c >= 0x7F && c <= 0xA0) || c == L'"' || c == L'\'' || c == L'<' || c == L'>' || c == L'\\' ||
           c == L'`';
}

}  // namespace

bool IsWebAddress(std::wstring_view text) {
    if (text.size() > kLongestWebAddress) {
        return false;
    }
    for (const wchar_t c : text) {
        if (IsForbidden(c)) {
            return false;
        }
    }
    if (!TakePrefix(text, L"https://") && !TakePrefix(text, L"http://")) {
        return false;
    }
    return !text.empty() && text.find_first_of(L"/?#:@") != 0;
}

}  // namespace suite
