#pragma once
// The usage events: their numbers and names, and how they are reported.
//
// Why: nothing here can hold up or change what a setter does. Threads: any.
#include <string>

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

// Queues one usage event; an empty text is none.
void Report(const std::string& eventId, const std::string& text);
// Queues the beauty event with the values that the registry holds now.
void ReportBeauty();

}  // namespace UsageEvents
