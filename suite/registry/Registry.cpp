#include "suite/registry/Registry.h"

#include <limits>
#include <vector>

#include "suite/common/RegistryKey.h"
#include "suite/registry/RegistryText.h"

namespace DE {

namespace {

LSTATUS Open(HKEY rootKey, const std::wstring& keyPath, REGSAM access, suite::RegistryKey& key) {
    return RegOpenKeyExW(rootKey, SystemKeyPath(keyPath).c_str(), 0, access, key.Put());
}

// None when it is missing or may not be opened that way.
suite::RegistryKey OpenKey(HKEY rootKey, const std::wstring& keyPath, REGSAM access) {
    suite::RegistryKey key;
    Open(rootKey, keyPath, access, key);
    return key;
}

// The value's bytes, whole, although another process may enlarge it between asking for the size and reading.
bool ReadText(HKEY key, const std::wstring& valueName, std::vector<unsigned char>& bytes) {
    DWORD size = 0;
    LSTATUS status = RegQueryValueExW(key, valueName.c_str(), nullptr, nullptr, nullptr, &size);
    if (status != ERROR_SUCCESS) {
        return false;
    }
    DWORD type = REG_NONE;
    do {
        bytes.resize(size > 0 ? size : 1);
        size = static_cast<DWORD>(bytes.size());
        status = RegQueryValueExW(key, valueName.c_str(), nullptr, &type, bytes.data(), &size);
    } while (status == ERROR_MORE_DATA);
    bytes.resize(status == ERROR_SUCCESS ? size : 0);
    return status == ERROR_SUCCESS && (type == REG_SZ || type == REG_EXPAND_SZ);
}

}  // namespace

Registry::Registry(HKEY rootKey) : rootKey_(rootKey) {}

void Registry::SetRootKey(HKEY rootKey) {
    rootKey_ = rootKey;
}

bool Registry::KeyExists(const std::wstring& keyPath) const {
    try {
        suite::RegistryKey key;
        const LSTATUS status = Open(rootKey_, keyPath, KEY_QUERY_VALUE, key);
        return status == ERROR_SUCCESS || status == ERROR_ACCESS_DENIED;
    } catch (...) {
        return false;
    }
}

bool Registry::CreateKey(const std::wstring& keyPath) const {
    try {
        suite::RegistryKey key;
        return RegCreateKeyExW(rootKey_, SystemKeyPath(keyPath).c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE, KEY_READ,
                               nullptr, key.Put(), nullptr) == ERROR_SUCCESS;
    } catch (...) {
        return false;
    }
}

bool Registry::GetValue(HKEY rootKey, const std::wstring& keyPath, const std::wstring& valueName, int& value,
                        REGSAM access) {
    try {
        const suite::RegistryKey key = OpenKey(rootKey, keyPath, access);
        DWORD type = REG_NONE;
        DWORD number = 0;
        DWORD size = sizeof number;
        if (!key || RegQueryValueExW(key.Get(), valueName.c_str(), nullptr, &type, reinterpret_cast<BYTE*>(&number),
                                     &size) != ERROR_SUCCESS) {
            return false;
        }
        if (type != REG_DWORD || size != sizeof number) {
            return false;
        }
        value = static_cast<int>(number);
        return true;
    } catch (...) {
        return false;
    }
}

bool Registry::GetValue(HKEY rootKey, const std::wstring& keyPath, const std::wstring& valueName, std::wstring& value,
                        REGSAM access) {
    try {
        const suite::RegistryKey key = OpenKey(rootKey, keyPath, access);
        std::vector<unsigned char> bytes;
        if (!key || !ReadText(key.Get(), valueName, bytes)) {
            return false;
        }
        std::optional<std::wstring> text = DecodeRegistryText(bytes.data(), bytes.size());
        if (!text) {
            return false;
        }
        value = std::move(*text);
        return true;
    } catch (...) {
        return false;
    }
}

bool Registry::SetValue(HKEY rootKey, const std::wstring& keyPath, const std::wstring& valueName, int value,
                        REGSAM access) {
    try {
        const suite::RegistryKey key = OpenKey(rootKey, keyPath, access);
        const auto number = static_cast<DWORD>(value);
        return key && RegSetValueExW(key.Get(), valueName.c_str(), 0, REG_DWORD, reinterpret_cast<const BYTE*>(&number),
                                     sizeof number) == ERROR_SUCCESS;
    } catch (...) {
        return false;
    }
}

bool Registry::SetValue(HKEY rootKey, const std::wstring& keyPath, const std::wstring& valueName,
                        const std::wstring& value, REGSAM access) {
    try {
        const suite::RegistryKey key = OpenKey(rootKey, keyPath, access);
        const std::size_t byteCount = (value.size() + 1) * sizeof(wchar_t);
        return key && byteCount <= std::numeric_limits<DWORD>::max() &&
               RegSetValueExW(key.Get(), valueName.c_str(), 0, REG_SZ, reinterpret_cast<const BYTE*>(value.c_str()),
                              static_cast<DWORD>(byteCount)) == ERROR_SUCCESS;
    } catch (...) {
        return false;
    }
}

}  // namespace DE
