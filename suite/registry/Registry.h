#pragma once
// The suite's registry class: typed reads and writes of single values.
//
// Why: callers name a hive, a path and a value, and never hold a key. A path may begin with a backslash. A read that
// fails (no key, no value, another type, a number that has not four bytes, a string that ends in half a character)
// leaves the output variable exactly as it was. Strings of any length are read up to their terminator, or whole when
// the writer left it out.
// Threads: static operations from any thread; an instance belongs to one thread. Nothing throws.
#include <windows.h>

#include <string>

#include "suite/common/Export.h"

namespace DE {

class SUITE_REGISTRY_API Registry {
  public:
    explicit Registry(HKEY rootKey = HKEY_CURRENT_USER);

    void SetRootKey(HKEY rootKey);
    // True also when the key is there but may not be read.
    bool KeyExists(const std::wstring& keyPath) const;
    // Creates the key with all missing parents; true when it is there afterwards.
    bool CreateKey(const std::wstring& keyPath) const;

    // REG_DWORD, read into a signed integer.
    static bool GetValue(HKEY rootKey, const std::wstring& keyPath, const std::wstring& valueName, int& value,
                         REGSAM access);
    // REG_SZ or REG_EXPAND_SZ (not expanded).
    static bool GetValue(HKEY rootKey, const std::wstring& keyPath, const std::wstring& valueName, std::wstring& value,
                         REGSAM access);
    // Writes REG_DWORD or REG_SZ; false when the key is missing or cannot be opened with `access`.
    static bool SetValue(HKEY rootKey, const std::wstring& keyPath, const std::wstring& valueName, int value,
                         REGSAM access);
    static bool SetValue(HKEY rootKey, const std::wstring& keyPath, const std::wstring& valueName,
                         const std::wstring& value, REGSAM access);

  private:
    HKEY rootKey_;  // borrowed: a predefined hive
};

}  // namespace DE
