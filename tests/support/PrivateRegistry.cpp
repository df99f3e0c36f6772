#include "tests/support/PrivateRegistry.h"

#include <gtest/gtest.h>

namespace harness {

PrivateRegistry::PrivateRegistry() : path_(L"SOFTWARE\\PixoraTest-" + std::to_wstring(GetCurrentProcessId())) {
    // An earlier program with the same number may have been cut off.
    RegDeleteTreeW(HKEY_CURRENT_USER, path_.c_str());
    EXPECT_EQ(RegCreateKeyExW(HKEY_CURRENT_USER, path_.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key_, nullptr),
              ERROR_SUCCESS);
    EXPECT_EQ(RegOverridePredefKey(HKEY_CURRENT_USER, key_), ERROR_SUCCESS);
}

PrivateRegistry::~PrivateRegistry() {
    RegOverridePredefKey(HKEY_CURRENT_USER, nullptr);
    RegCloseKey(key_);
    RegDeleteTreeW(HKEY_CURRENT_USER, path_.c_str());
}

}  // namespace harness
