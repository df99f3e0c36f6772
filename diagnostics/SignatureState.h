#pragma once
// Who vouches for the program's files: whether each carries a signature that this system trusts.
//
// Asked without any window and without the network, so a certificate that was taken back meanwhile still counts.
// Thread: any.
#include <string>

#include "diagnostics/Report.h"

namespace diagnostics {

// Of the programs and libraries in the folder. Unsigned files are a fact, those whose signature does not hold are
// wrong.
void AddSignatures(Report& report, const std::wstring& folder);

}  // namespace diagnostics
