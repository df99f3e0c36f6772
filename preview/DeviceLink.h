#pragma once
// The device paths that the system gives one camera. Pure logic, any thread.
#include <string_view>

namespace preview {

// Whether both name the same device. One device has several paths, one for each kind of use, which differ in the kind
// behind the last "#" and in the case of their letters.
bool IsSameDevice(std::wstring_view a, std::wstring_view b);

}  // namespace preview
