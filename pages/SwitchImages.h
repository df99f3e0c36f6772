#pragma once
// The images of the home page's two-state buttons. Constant data, any thread.
#include <string>

// 2 and 5 are kept for compatibility: they name no image and are never applied.
enum class SwitchImage {
    kOn = 0,
    kOnHover = 1,
    kSpareOn = 2,
    kOff = 3,
    kOffHover = 4,
    kSpareOff = 5,
    kUnchecked = 6,
    kChecked = 7,
};

// As an image attribute of the UI library; empty for the spare ones.
std::wstring SwitchImageOf(SwitchImage image);
