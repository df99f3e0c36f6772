#pragma once
// Which texts are web addresses that may be handed to the system's shell.
//
// Why: the shell starts programs too, and puts an address into the browser's command line. Pure logic. Any thread.
// Nothing throws.
#include <cstddef>
#include <string_view>

namespace suite {

inline constexpr std::size_t kLongestAddress = 2048;

// "http://" or "https://" in any letter case, followed by a host; no blanks, control characters, quotation marks,
// backslashes or other characters that a well-formed address has only in escaped form. Letters of every script may
// stand in it.
bool IsWebAddress(std::wstring_view address);

}  // namespace suite
