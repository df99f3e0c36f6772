#pragma once
// Numbers and names of the usage events. Constant data, any thread.
namespace UsageEvents {

// With a short text.
inline constexpr const char* kCameraSwitch = "631770001";
inline constexpr const char* kBackground = "631770002";
inline constexpr const char* kFocusPerson = "631770003";
inline constexpr const char* kCorrectSight = "631770004";

// With the five fields below, in this order.
inline constexpr int kBeauty = 992612801;
inline constexpr const char* kBeautyStatus = "STATUS";
inline constexpr const char* kBeautySmooth = "SMOOTH";
inline constexpr const char* kBeautyWhite = "WHITE";
inline constexpr const char* kBeautyEye = "EYE";
inline constexpr const char* kBeautyThin = "THIN";

}  // namespace UsageEvents
