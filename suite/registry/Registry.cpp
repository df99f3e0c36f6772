#include "suite/registry/Registry.h"

#include <limits>
#include <vector>

#include "suite/registry/RegistryText.h"

namespace DE {

namespace {

// An open key; null when it is missing or may not be opened that way.
class Key {
  public:
    Key(HKEY rootKey, const std::wstring& keyPath, REGSAM access) {
        status_ = RegOpenKeyExW(rootKey, SystemKeyPath(keyPath).c_str(), 0, access, &key_);
    }
    ~Key() {
        if (IsOpen()) {
            RegCloseKey(key_);
        }
    }
    Key(const Key&) = delete;
    Key& operator=(const Key&) = delete;

    bool IsOpen() const { return status_ == ERROR_SUCCESS; }
    LSTATUS Status() const { return status_; }
    HKEY Get() const { return key_; }

  private:
    HKEY key_ = nullptr;
    LSTATUS status_;
};

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
        const Key key(rootKey_, keyPath, KEY_QUERY_VALUE);
        return key.IsOpen() || key.Status() == ERROR_ACCESS_DENIED;
    } catch (...) {
        return false;
    }
}

bool Registry::CreateKey(const std::wstring& keyPath) const {
    try {
        HKEY key = nullptr;
        const LSTATUS status = RegCreateKeyExW(rootKey_, SystemKeyPath(keyPath).c_str(), 0, nullptr,
                                               REG_OPTION_NON_VOLATILE, KEY_READ, nullptr, &key, nullptr);
        if (status == ERROR_SUCCESS) {
            RegCloseKey(key);
        }
        return status == ERROR_SUCCESS;
    } catch (...) {
        return false;
    }
}

bool Registry::GetValue(HKEY rootKey, const std::wstring& keyPath, const std::wstring& valueName, int& value,
                        REGSAM access) {
    try {
        const Key key(rootKey, keyPath, access);
        DWORD type = REG_NONE;
        DWORD number = 0;
        DWORD size = sizeof number;
        if (!key.IsOpen() || RegQueryValueExW(key.Get(), valueName.c_str(), nullptr, &type,
                                              reinterpret_cast<BYTE*>(&number), &size) != ERROR_SUCCESS) {
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
        const Key key(rootKey, keyPath, access);
        std::vector<unsigned char> bytes;
        if (!key.IsOpen() || !ReadText(key.Get(), valueName, bytes)) {
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
        const Key key(rootKey, keyPath, access);
        const auto number = static_cast<DWORD>(value);
        return key.IsOpen() && RegSetValueExW(key.Get(), valueName.c_str(), 0, REG_DWORD,
                                              reinterpret_cast<const BYTE*>(&number), sizeof number) == ERROR_SUCCESS;
    } catch (...) {
        return false;
    }
}

bool Registry::SetValue(HKEY rootKey, const std::wstring& keyPath, const std::wstring& valueName,
                        const std::wstring& value, REGSAM access) {
    try {
        const Key key(rootKey, keyPath, access);
        const std::size_t byteCount = (value.size() + 1) * sizeof(wchar_t);
        return key.IsOpen() && byteCount <= std::numeric_limits<DWORD>::max() &&
               RegSetValueExW(key.Get(), valueName.c_str(), 0, REG_SZ, reinterpret_cast<const BYTE*>(value.c_str()),
                              static_cast<DWORD>(byteCount)) == ERROR_SUCCESS;
    } catch (...) {
        return false;
    }
}

}  // namespace DE
