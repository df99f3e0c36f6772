#include "windows/MessageTexts.h"

#include <gtest/gtest.h>

#include <climits>
#include <set>
#include <string>

namespace {

using GlobalUtils::MessageBoxKind;

TEST(MessageTexts, EachKindHasATextOfItsOwn) {
    std::set<std::wstring> keys;
    for (const int kind : {0, 1, 5, 7, 8, 9, 10}) {
        const wchar_t* key = MessageTextKey(static_cast<MessageBoxKind>(kind));
        ASSERT_NE(key, nullptr) << kind;
        EXPECT_EQ(std::wstring(key).rfind(L"IDS_LUMI_MSG_", 0), 0U) << kind;
        EXPECT_TRUE(keys.insert(key).second) << kind;
    }
}

TEST(MessageTexts, TheCameraAndTheSizes) {
    EXPECT_STREQ(MessageTextKey(MessageBoxKind::kCameraUnavailable), L"IDS_LUMI_MSG_CAMERA_UNAVAILABLE");
    EXPECT_STREQ(MessageTextKey(MessageBoxKind::kImageTooLarge), L"IDS_LUMI_MSG_IMAGE_TOO_LARGE");
    EXPECT_STREQ(MessageTextKey(MessageBoxKind::kVideoTooLarge), L"IDS_LUMI_MSG_VIDEO_TOO_LARGE");
}

TEST(MessageTexts, OtherNumbersHaveNone) {
    for (const int kind : {2, 3, 4, 6, 11, -1, INT_MIN, INT_MAX})
        EXPECT_EQ(MessageTextKey(static_cast<MessageBoxKind>(kind)), nullptr) << kind;
}

}  // namespace
