#pragma once
// What the calls of the accessibility interfaces share. UI thread.
#include <windows.h>

#include <oleauto.h>

#include <exception>
#include <new>

#include "suite/logger/QxLogger.h"

namespace DuiLib {

inline VARIANT ToVariant(long value) {
    VARIANT v;
    VariantInit(&v);
    v.vt = VT_I4;
    v.lVal = value;
    return v;
}

// Runs an operation of an interface: no exception may cross it.
template <typename Operation>
HRESULT Guarded(const Operation& operation) {
    try {
        return operation();
    } catch (const std::bad_alloc&) {
        return E_OUTOFMEMORY;
    } catch (const std::exception& e) {
        LogLine(LogLevel::kError, L"WindowAccessible::Guarded", L"Unexpected exception: ", e.what());
    } catch (...) {
        LogLine(LogLevel::kError, L"WindowAccessible::Guarded", L"Unexpected exception");
    }
    return E_FAIL;
}

}  // namespace DuiLib
