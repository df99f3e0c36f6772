#include "diagnostics/Options.h"

namespace diagnostics {

const char kHelp[] =
    "PixoraDiagnostics [--output FILE]\n"
    "Looks at everything that Pixora needs on this machine and says what is wrong: versions, settings, driver and\n"
    "algorithm, cameras, camera service, folders and rights, screens, the last lines of the log. Changes nothing.\n"
    "User and computer names, account numbers and the names of own pictures are left out of the report.\n"
    "\n"
    "  --output FILE   writes the report into FILE, as UTF-8, instead of showing it\n"
    "  --help          this text\n"
    "\n"
    "Exit code: 0 all fine, 1 something is wrong, 2 wrong usage, 3 the report cannot be written.\n";

std::optional<Options> ParseOptions(const std::vector<std::wstring>& words) {
    Options options;
    for (std::size_t i = 0; i < words.size(); ++i) {
        if (words[i] == L"--help") {
            options.help = true;
        } else if (words[i] == L"--output" && i + 1 < words.size() && !words[i + 1].empty()) {
            options.outputFile = words[++i];
        } else {
            return std::nullopt;
        }
    }
    return options;
}

}  // namespace diagnostics
