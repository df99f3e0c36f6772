#include "preview/DeviceLink.h"

#include <gtest/gtest.h>

namespace preview {
namespace {

constexpr wchar_t kLink[] = L"\\\\?\\usb#vid_05c8&pid_0001&mi_00#7&1a2b&0&0000#{e5323777-f976-4f5b-9b55-b94699c46e44}";

TEST(DeviceLink, TheKindAndTheCaseDoNotCount) {
    EXPECT_TRUE(IsSameDevice(kLink, kLink));
    EXPECT_TRUE(IsSameDevice(kLink, L"\\\\?\\USB#VID_05C8&PID_0001&MI_00#7&1A2B&0&0000#{65e8773d-8f56-11d0}\\global"));
    EXPECT_TRUE(IsSameDevice(L"\\\\?\\usb#a#b", L"\\\\?\\USB#A#B#{kind}"));
}

TEST(DeviceLink, AnotherDeviceIsAnotherOne) {
    EXPECT_FALSE(IsSameDevice(kLink, L"\\\\?\\usb#vid_05c8&pid_0001&mi_00#7&1a2b&0&0001#{e5323777}"));
    EXPECT_FALSE(IsSameDevice(kLink, L"\\\\?\\usb#vid_05c8&pid_0001&mi_00#7&1a2b&0&00000#{e5323777}"));
    EXPECT_FALSE(IsSameDevice(kLink, L"\\\\?\\usb#vid_05c8&pid_0001#{e5323777}"));
    EXPECT_FALSE(IsSameDevice(L"\\\\?\\sw#{a}#1#{kind}", L"\\\\?\\sw#{a}#2#{kind}")) << "the last one is the kind";
}

TEST(DeviceLink, NothingIsNoDevice) {
    EXPECT_FALSE(IsSameDevice(L"", L""));
    EXPECT_FALSE(IsSameDevice(L"#{a}", L"#{b}"));
    EXPECT_FALSE(IsSameDevice(L"", kLink));
}

}  // namespace
}  // namespace preview
