#pragma once
// Which cameras the preview accepts: those whose device path names one of a fixed set of makers.
//
// The list is fixed at build time; its order and its doubled entry are kept as they were agreed with the makers of the
// camera service. Pure functions, any thread.
#include <span>
#include <string>

namespace preview {

// The identifiers, upper case, in list order.
std::span<const std::wstring> CameraAllowList();

// Whether an identifier of the list occurs anywhere in the link. Only the letters a to z of the link count as upper
// case; nothing is required of what stands around the identifier.
bool IsAllowedCameraLink(std::wstring symbolicLink);

}  // namespace preview
