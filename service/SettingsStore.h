#pragma once
// The settings key of the current user: single values in, single values out, and its first-run content.
//
// Why: camera service and program share the key and both write it, so nothing is cached and every read asks the
// registry. Threads: any; each operation is atomic by itself.
#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "service/CustomImageGroup.h"
#include "service/EffectTable.h"

namespace SettingsStore {

// False when there is no such value or it has another type; `value` is then as it was, which callers count on.
bool Read(const wchar_t* name, int& value);
bool Read(const wchar_t* name, std::wstring& value);

// A failure is ignored: the page does not learn of it, and the next read tells the truth.
void Write(const wchar_t* name, int value);
void Write(const wchar_t* name, const std::wstring& value);

// In the order of kBeautyLevels. A level that is missing has the value of the one before it, the first the default.
// Kept for compatibility.
std::array<std::int32_t, service::kBeautyLevels.size()> ReadBeautyLevels();

// The list of the user's own backgrounds.
CustomImageGroup::Contents ReadCustomImages();
// False when the value is there and is no text: whoever wrote it may know what it is, so it is left alone. Logged.
[[nodiscard]] bool MayWriteCustomImages();
// As MayWriteCustomImages; then it is written.
bool WriteCustomImages(const std::vector<CustomImageRecord>& records, const std::wstring& rest);

// Creates the key with its ten defaults when it does not exist. A key that exists is left alone, whatever it lacks.
void CreateDefaultsOnFirstRun();

}  // namespace SettingsStore
