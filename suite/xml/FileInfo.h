#pragma once
// The suite's file utility, as far as this program uses it. Any thread. Nothing throws.
#include <string>

#include "suite/common/Export.h"

class SUITE_XML_API FileInfo {
  public:
    // The full path (UTF-8) of a file that is named relative to the folder of the running program:
    // "plugins\\a.xml" gives "C:\\...\\plugins\\a.xml". Empty when the program's own path cannot be read.
    static std::string GetSelfFullFilePath(const std::string& relativePath);
};
