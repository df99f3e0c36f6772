#pragma once
// Which texts may be handed to the shell as web addresses.
//
// Why: the shell opens anything, programs included, and a browser's command line is the address between quotes.
// Pure logic. Any thread.
#include <cstddef>
#include <string_view>

namespace suite {

inline constexpr std::size_t kLongestWebAddress = 2083;

// "http://" or "https://" (in any letter case), then a host, and neither blanks, control characters, quotes of any
// kind, angle brackets nor backslashes anywhere.
bool IsWebAddress(std::wstring_view text);

}  // namespace suite
