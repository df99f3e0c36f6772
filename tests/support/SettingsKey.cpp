#include "tests/support/SettingsKey.h"

#include <gtest/gtest.h>

#include <array>
#include <vector>

#include "tests/support/Protocol.h"

namespace harness::SettingsKey {

namespace {

constexpr const wchar_t* kKey = Protocol::kSettingsKey;

// REQUIRES: `type` is REG_DWORD or REG_SZ.
Value ValueOf(DWORD type, const std::vector<wchar_t>& data) {
    if (type == REG_DWORD) {
        return *reinterpret_cast<const int*>(data.data());
    }
    return std::wstring(data.data());
}

}  // namespace

void Set(const std::wstring& name, const Value& value) {
    LSTATUS status = ERROR_SUCCESS;
    if (const int* number = std::get_if<int>(&value)) {
        status = RegSetKeyValueW(HKEY_CURRENT_USER, kKey, name.c_str(), REG_DWORD, number, sizeof(*number));
    } else {
        const std::wstring& text = std::get<std::wstring>(value);
        status = RegSetKeyValueW(HKEY_CURRENT_USER, kKey, name.c_str(), REG_SZ, text.c_str(),
                                 static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t)));
    }
    ASSERT_EQ(status, ERROR_SUCCESS);
}

void Remove(const std::wstring& name) {
    RegDeleteKeyValueW(HKEY_CURRENT_USER, kKey, name.c_str());
}

std::optional<Value> Get(const std::wstring& name) {
    for (;;) {
        DWORD size = 0;
        DWORD type = 0;
        constexpr DWORD kTypes = RRF_RT_REG_DWORD | RRF_RT_REG_SZ;
        if (RegGetValueW(HKEY_CURRENT_USER, kKey, name.c_str(), kTypes, &type, nullptr, &size) != ERROR_SUCCESS) {
            return std::nullopt;
        }
        // Room for a terminator that may be missing.
        std::vector<wchar_t> data(size / sizeof(wchar_t) + 2);
        size = static_cast<DWORD>(data.size() * sizeof(wchar_t));
        const LSTATUS status = RegGetValueW(HKEY_CURRENT_USER, kKey, name.c_str(), kTypes, &type, data.data(), &size);
        if (status == ERROR_SUCCESS) {
            return ValueOf(type, data);
        }
        if (status != ERROR_MORE_DATA) {  // it grew meanwhile
            return std::nullopt;
        }
    }
}

std::optional<int> Number(const std::wstring& name) {
    const std::optional<Value> value = Get(name);
    const int* const number = value ? std::get_if<int>(&*value) : nullptr;
    return number ? std::optional(*number) : std::nullopt;
}

std::optional<std::wstring> Text(const std::wstring& name) {
    const std::optional<Value> value = Get(name);
    const std::wstring* const text = value ? std::get_if<std::wstring>(&*value) : nullptr;
    return text ? std::optional(*text) : std::nullopt;
}

Values All() {
    Values values;
    HKEY key = nullptr;
    if (RegOpenKeyExW(HKEY_CURRENT_USER, kKey, 0, KEY_READ, &key) != ERROR_SUCCESS) {
        return values;
    }
    for (DWORD i = 0;; ++i) {
        std::array<wchar_t, 256> name{};
        DWORD nameLength = name.size();
        DWORD type = 0;
        if (RegEnumValueW(key, i, name.data(), &nameLength, nullptr, &type, nullptr, nullptr) != ERROR_SUCCESS) {
            break;
        }
        if (const auto value = Get(name.data())) {
            values[name.data()] = *value;
        } else {
            ADD_FAILURE() << "a value of type " << type;
        }
    }
    RegCloseKey(key);
    return values;
}

bool Exists() {
    HKEY key = nullptr;
    const bool exists = RegOpenKeyExW(HKEY_CURRENT_USER, kKey, 0, KEY_READ, &key) == ERROR_SUCCESS;
    if (exists) {
        RegCloseKey(key);
    }
    return exists;
}

void MakeEmpty() {
    Delete();
    HKEY key = nullptr;
    ASSERT_EQ(RegCreateKeyExW(HKEY_CURRENT_USER, kKey, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key, nullptr),
              ERROR_SUCCESS);
    RegCloseKey(key);
}

void Delete() {
    RegDeleteTreeW(HKEY_CURRENT_USER, kKey);
}

void SetInstalled() {
    Delete();
    Set(Protocol::kDriverInstalled, 1);
    Set(Protocol::kAlgorithmStarted, 1);
}

}  // namespace harness::SettingsKey
