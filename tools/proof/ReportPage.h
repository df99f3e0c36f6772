#pragma once
// The page that a run of the tests leaves: one HTML file, with pictures beside it. It needs no network; a box that is
// ticked and a note that is written stay in the page when the browser saves it. Pure functions, any thread.
#include <string>
#include <vector>

#include "tools/proof/CaseReader.h"
#include "tools/proof/TestList.h"

namespace proof {

struct ProgramResult {
    std::string name;
    int seconds = 0;
    std::vector<Case> cases;
};

struct Counts {
    int passed = 0;
    int failed = 0;
    int skipped = 0;
};

struct Report {
    std::string version;
    std::string begun;  // date and time
    int seconds = 0;
    bool isWhole = true;  // false: stopped before the last test
    std::vector<ProgramResult> results;
    std::vector<Named> without;
    std::vector<Named> steps;
    std::vector<std::string> pictures;  // file names, in the folder screenshots beside the page
    std::string diagnostics;
    std::vector<std::string> remarks;  // what could not be given back
};

Counts Count(const std::vector<ProgramResult>& results);
// UTF-8.
std::string MakePage(const Report& report);

}  // namespace proof
