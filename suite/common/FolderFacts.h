#pragma once
// What can be known of a folder before it is trusted with files: whether it is one, and whose. Pure data;
// suite/common/HeldFolder.h finds it out.
#include <string>

namespace suite {

struct FolderFacts {
    // The system's number when the folder could not be looked at; then nothing below counts.
    unsigned long error = 0;
    bool isFolder = false;
    // A junction or another reparse point: it leads to somewhere else.
    bool isLink = false;
    // Identifier in text form.
    std::wstring owner;
};

}  // namespace suite
