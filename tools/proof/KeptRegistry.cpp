#include "tools/proof/KeptRegistry.h"

#include <windows.h>

#include "suite/common/RegistryKey.h"

namespace proof {

namespace {

constexpr wchar_t kWhole[] = L"Whole";  // written last: without it the copy was never finished
constexpr wchar_t kKey[] = L"Key";
constexpr wchar_t kName[] = L"Name";
constexpr wchar_t kAbove[] = L"Above";  // the nearest key that was there
constexpr wchar_t kData[] = L"Data";    // only when the value was there
constexpr wchar_t kTree[] = L"Tree";    // only when the key was there

suite::RegistryKey Open(const std::wstring& path, REGSAM rights = KEY_ALL_ACCESS) {
    suite::RegistryKey key;
    RegOpenKeyExW(HKEY_CURRENT_USER, path.c_str(), 0, rights, key.Put());
    return key;
}

suite::RegistryKey Create(const std::wstring& path) {
    suite::RegistryKey key;
    RegCreateKeyExW(HKEY_CURRENT_USER, path.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, key.Put(), nullptr);
    return key;
}

struct Data {
    DWORD type = REG_NONE;
    std::vector<BYTE> bytes;
    LSTATUS status = ERROR_SUCCESS;
};

Data Read(HKEY key, const wchar_t* name) {
    Data data;
    DWORD size = 0;
    data.status = RegQueryValueExW(key, name, nullptr, &data.type, nullptr, &size);
    if (data.status == ERROR_SUCCESS) {
        data.bytes.resize(size);
        data.status = RegQueryValueExW(key, name, nullptr, &data.type, data.bytes.data(), &size);
    }
    return data;
}

bool Write(HKEY key, const wchar_t* name, const Data& data) {
    return RegSetValueExW(key, name, 0, data.type, data.bytes.data(), static_cast<DWORD>(data.bytes.size())) ==
           ERROR_SUCCESS;
}

bool WriteText(HKEY key, const wchar_t* name, const std::wstring& text) {
    const auto* bytes = reinterpret_cast<const BYTE*>(text.c_str());
    return Write(key, name, {REG_SZ, {bytes, bytes + (text.size() + 1) * sizeof(wchar_t)}, ERROR_SUCCESS});
}

std::wstring ReadText(HKEY key, const wchar_t* name) {
    const Data data = Read(key, name);
    std::wstring text(reinterpret_cast<const wchar_t*>(data.bytes.data()), data.bytes.size() / sizeof(wchar_t));
    return text.substr(0, text.find(L'\0'));
}

std::wstring Parent(const std::wstring& path) {
    const std::size_t end = path.rfind(L'\\');
    return end == std::wstring::npos ? std::wstring() : path.substr(0, end);
}

std::wstring NearestKey(std::wstring path) {
    while (!path.empty() && !Open(path, KEY_READ)) {
        path = Parent(path);
    }
    return path;
}

bool IsGone(LSTATUS status) {
    return status == ERROR_FILE_NOT_FOUND;
}

// Into the key of the copy.
bool KeepPlace(const KeptRegistry::Place& place, HKEY copy) {
    if (!WriteText(copy, kKey, place.key) || !WriteText(copy, kName, place.value) ||
        !WriteText(copy, kAbove, NearestKey(place.key))) {
        return false;
    }
    const suite::RegistryKey key = Open(place.key, KEY_READ);
    if (!key) {
        return NearestKey(place.key) != place.key;  // it is there, and must not be read
    }
    if (!place.value.empty()) {
        const Data data = Read(key.Get(), place.value.c_str());
        return IsGone(data.status) || (data.status == ERROR_SUCCESS && Write(copy, kData, data));
    }
    suite::RegistryKey tree;
    return RegCreateKeyExW(copy, kTree, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, tree.Put(), nullptr) == ERROR_SUCCESS &&
           RegCopyTreeW(key.Get(), nullptr, tree.Get()) == ERROR_SUCCESS;
}

bool GiveBackValue(const std::wstring& path, const std::wstring& name, HKEY copy) {
    const Data data = Read(copy, kData);
    if (data.status == ERROR_SUCCESS) {
        const suite::RegistryKey key = Create(path);
        return key && Write(key.Get(), name.c_str(), data);
    }
    const suite::RegistryKey key = Open(path);
    if (!key) {
        return true;
    }
    const LSTATUS status = RegDeleteValueW(key.Get(), name.c_str());
    return status == ERROR_SUCCESS || IsGone(status);
}

bool GiveBackTree(const std::wstring& path, HKEY copy) {
    suite::RegistryKey tree;
    if (RegOpenKeyExW(copy, kTree, 0, KEY_READ, tree.Put()) != ERROR_SUCCESS) {
        const LSTATUS status = RegDeleteTreeW(HKEY_CURRENT_USER, path.c_str());
        return status == ERROR_SUCCESS || IsGone(status);
    }
    // The key itself stays: others may watch it.
    const suite::RegistryKey key = Create(path);
    return key && RegDeleteTreeW(key.Get(), nullptr) == ERROR_SUCCESS &&
           RegCopyTreeW(tree.Get(), nullptr, key.Get()) == ERROR_SUCCESS;
}

// Only keys that are empty: what another program has written meanwhile is not the tests'.
void RemoveNewKeys(std::wstring path, const std::wstring& above) {
    for (; path.size() > above.size(); path = Parent(path)) {
        const suite::RegistryKey key = Open(path, KEY_READ);
        DWORD keys = 0, values = 0;
        if (key && (RegQueryInfoKeyW(key.Get(), nullptr, nullptr, nullptr, &keys, nullptr, nullptr, &values, nullptr,
                                     nullptr, nullptr, nullptr) != ERROR_SUCCESS ||
                    keys + values > 0)) {
            return;
        }
        RegDeleteKeyW(HKEY_CURRENT_USER, path.c_str());
    }
}

bool GiveBackPlace(HKEY copy) {
    const std::wstring path = ReadText(copy, kKey);
    const std::wstring name = ReadText(copy, kName);
    const bool isBack = name.empty() ? GiveBackTree(path, copy) : GiveBackValue(path, name, copy);
    RemoveNewKeys(path, ReadText(copy, kAbove));
    return isBack;
}

}  // namespace

bool KeptRegistry::IsKept() const {
    const suite::RegistryKey copy = Open(copy_, KEY_READ);
    return copy && Read(copy.Get(), kWhole).status == ERROR_SUCCESS;
}

bool KeptRegistry::Keep(const std::vector<Place>& places) const {
    RegDeleteTreeW(HKEY_CURRENT_USER, copy_.c_str());
    for (std::size_t i = 0; i < places.size(); ++i) {
        const suite::RegistryKey copy = Create(copy_ + L"\\" + std::to_wstring(i));
        if (!copy || !KeepPlace(places[i], copy.Get())) {
            RegDeleteTreeW(HKEY_CURRENT_USER, copy_.c_str());
            return false;
        }
    }
    const suite::RegistryKey copy = Create(copy_);
    return copy && WriteText(copy.Get(), kWhole, L"yes");
}

bool KeptRegistry::GiveBack() const {
    bool isBack = true;
    for (std::size_t i = 0;; ++i) {
        const suite::RegistryKey copy = Open(copy_ + L"\\" + std::to_wstring(i), KEY_READ);
        if (!copy) {
            break;
        }
        isBack = GiveBackPlace(copy.Get()) && isBack;
    }
    return isBack && RegDeleteTreeW(HKEY_CURRENT_USER, copy_.c_str()) == ERROR_SUCCESS;
}

}  // namespace proof
