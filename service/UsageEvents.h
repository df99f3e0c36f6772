#pragma once
// The usage events: their numbers and names, and how they are reported.
//
// Why: nothing here can hold up or change what a setter does. Threads: any.
#include <string>

namespace UsageEvents {

// With a short text. Those of the effects are in EffectTable.h.
inline constexpr const char* kBackground = "631770002";

// With the state of the beauty switch and the levels of EffectTable.h, in their order.
inline constexpr int kBeauty = 992612801;
inline constexpr const char* kBeautyStatus = "STATUS";

// Queues one usage event; an empty text is none.
void Report(const std::string& eventId, const std::string& text);
// Queues the beauty event with the values that the registry holds now.
void ReportBeauty();

}  // namespace UsageEvents
