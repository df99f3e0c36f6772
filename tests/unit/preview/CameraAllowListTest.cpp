#include "preview/CameraAllowList.h"

#include <gtest/gtest.h>

#include <vector>

namespace preview {
namespace {

TEST(CameraAllowList, HoldsTheAgreedEntriesInTheirOrder) {
    const std::vector<std::wstring> expected = {
        L"VID_05C8", L"VID_3408", L"VID_0408", L"VID_3408", L"VID_13D3", L"VID_30C9", L"VID_3277",
        L"VID_2B7E", L"VID_1BCF", L"VID_3196", L"INT3480",  L"VID_5959", L"VID_5858",
    };
    const auto list = CameraAllowList();
    EXPECT_EQ(std::vector<std::wstring>(list.begin(), list.end()), expected);
}

TEST(CameraAllowList, EveryEntryIsFoundInALowerCaseLink) {
    for (const wchar_t* link : {L"vid_05c8", L"vid_3408", L"vid_0408", L"vid_13d3", L"vid_30c9", L"vid_3277",
                                L"vid_2b7e", L"vid_1bcf", L"vid_3196", L"int3480", L"vid_5959", L"vid_5858"}) {
        EXPECT_TRUE(IsAllowedCameraLink(std::wstring(L"\\\\?\\usb#") + link + L"&pid_0123&mi_00#6&1#{e5323777}"));
    }
}

TEST(CameraAllowList, AnEntryMayStandAnywhere) {
    EXPECT_TRUE(IsAllowedCameraLink(L"INT3480"));
    EXPECT_TRUE(IsAllowedCameraLink(L"\\\\?\\display#xxINT3480yy#1"));
    EXPECT_TRUE(IsAllowedCameraLink(L"abcVid_3408"));
    EXPECT_TRUE(IsAllowedCameraLink(L"vid_34089")) << "what follows is not looked at";
}

TEST(CameraAllowList, OthersAreRefused) {
    EXPECT_FALSE(IsAllowedCameraLink(L""));
    EXPECT_FALSE(IsAllowedCameraLink(L"\\\\?\\usb#vid_046d&pid_0825#1"));
    EXPECT_FALSE(IsAllowedCameraLink(L"\\\\?\\usb#vid_05c&pid_8#1"));
    EXPECT_FALSE(IsAllowedCameraLink(L"VID 3196"));
    EXPECT_FALSE(IsAllowedCameraLink(L"INT3481"));
    EXPECT_FALSE(
        IsAllowedCameraLink(L"vid\x7F"
                            L"05c8"))
        << "as far from the underscore as a letter from its capital";
}

TEST(CameraAllowList, OnlyAsciiLettersChangeCase) {
    // U+0131, the dotless i, has the upper case I in some languages; here it stays what it is.
    EXPECT_FALSE(IsAllowedCameraLink(L"v\u0131d_05c8"));
    EXPECT_TRUE(IsAllowedCameraLink(L"\u00e9\u0131 vid_05c8"));
}

}  // namespace
}  // namespace preview
