#pragma once
// The settings key as a test writes and reads it: in this process's own registry or, for programs that the test starts,
// in the user's. Thread: any.
#include <windows.h>

#include <map>
#include <optional>
#include <string>
#include <variant>

namespace harness::SettingsKey {

using Value = std::variant<int, std::wstring>;  // REG_DWORD or REG_SZ
using Values = std::map<std::wstring, Value>;

void Set(const std::wstring& name, const Value& value);
void Remove(const std::wstring& name);
// Nothing when there is no such value, or one of another type.
std::optional<int> Number(const std::wstring& name);
std::optional<std::wstring> Text(const std::wstring& name);
std::optional<Value> Get(const std::wstring& name);
// Fails the test for a value of another type.
Values All();

bool Exists();
void MakeEmpty();
// With everything below; no failure when there is none.
void Delete();
// The key as an installation with a working driver and algorithm leaves it, and nothing else in it.
void SetInstalled();

}  // namespace harness::SettingsKey
