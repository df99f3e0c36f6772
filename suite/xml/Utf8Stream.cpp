#include "suite/xml/Utf8Stream.h"

#include <algorithm>

namespace suite {

HRESULT Utf8Stream::Read(void* bytes, ULONG size, ULONG* read) {
    if (!bytes) {
        return STG_E_INVALIDPOINTER;
    }
    const std::size_t most = std::min<std::size_t>(size, rest_.size());
    std::size_t length = most;
    while (length > 0 && (static_cast<unsigned char>(rest_[length - 1]) & 0x80) != 0) {
        --length;
    }
    length = length > 0 ? length : most;
    std::copy_n(rest_.data(), length, static_cast<char*>(bytes));
    rest_.remove_prefix(length);
    if (read) {
        *read = static_cast<ULONG>(length);
    }
    return length < size ? S_FALSE : S_OK;
}

HRESULT Utf8Stream::Write(const void*, ULONG, ULONG*) {
    return STG_E_ACCESSDENIED;
}

}  // namespace suite
