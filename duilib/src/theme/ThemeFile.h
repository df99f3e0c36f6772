#pragma once
// Reads the program's themes.xml (its form is in DuiLib/Theme.h). Thread: UI thread.
#include <string>
#include <utility>
#include <vector>

#include "theme/ColorTable.h"

namespace DuiLib {

struct ThemeFile {
    std::vector<std::pair<std::wstring, SystemColor>> masks;
    std::vector<std::wstring> upright;
};

// False: the file cannot be read. The colours go into the table. What is wrong, and which known names are missing, is
// logged.
bool ReadThemeFile(const std::wstring& path, ColorTable& colors, ThemeFile& file);

}  // namespace DuiLib
