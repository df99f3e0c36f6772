#pragma once
// One test program of the list: started, waited for, and ended with everything that it has started itself.
// Thread: one program at a time, as its variables are set in this process's environment.
#include <windows.h>

#include <filesystem>

#include "tools/proof/CaseReader.h"
#include "tools/proof/TestList.h"

namespace proof {

// Its standard output and errors go into that file. `stop`: an event that ends it early; borrowed.
Ending RunProgram(const ListedTest& test, const std::filesystem::path& root, const std::filesystem::path& output,
                  HANDLE stop);

}  // namespace proof
