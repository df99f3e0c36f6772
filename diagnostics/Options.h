#pragma once
// The command line of the diagnostics program. Pure logic, any thread.
#include <optional>
#include <string>
#include <vector>

namespace diagnostics {

enum ExitCode { kAllFine = 0, kSomethingWrong = 1, kWrongUsage = 2, kNotWritten = 3 };

struct Options {
    bool help = false;
    std::wstring outputFile;  // empty: standard output
};

// `words`: the command line without the program's name. Nothing when it cannot be understood.
std::optional<Options> ParseOptions(const std::vector<std::wstring>& words);

extern const char kHelp[];

}  // namespace diagnostics
