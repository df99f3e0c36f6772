#pragma once
// The pages' names: what they are switched to by, and their virtual windows.

namespace PageNames {

inline constexpr wchar_t kHome[] = L"HomePage";
inline constexpr wchar_t kIntroduction[] = L"IntroductionPage";

}  // namespace PageNames
