#include "windows/MessageTexts.h"

#include <gtest/gtest.h>

#include <climits>

namespace {

using GlobalUtils::MessageBoxKind;

TEST(MessageTexts, EachKindHasItsKey) {
    EXPECT_STREQ(MessageTextKey(MessageBoxKind::kFileUnreadable), L"IDS_LUMI_MSG_FILE_UNREADABLE");
    EXPECT_STREQ(MessageTextKey(MessageBoxKind::kBackgroundGone), L"IDS_LUMI_MSG_SERVICE_PROBLEM");
    EXPECT_STREQ(MessageTextKey(MessageBoxKind::kCameraUnavailable), L"IDS_LUMI_MSG_CAMERA_UNAVAILABLE");
    EXPECT_STREQ(MessageTextKey(MessageBoxKind::kImageTooLarge), L"IDS_LUMI_MSG_IMAGE_TOO_LARGE");
    EXPECT_STREQ(MessageTextKey(MessageBoxKind::kVideoTooLarge), L"IDS_LUMI_MSG_VIDEO_TOO_LARGE");
    EXPECT_STREQ(MessageTextKey(MessageBoxKind::kAlgorithmNotReady), L"IDS_LUMI_MSG_EFFECTS_NOT_STARTED");
    EXPECT_STREQ(MessageTextKey(MessageBoxKind::kBackgroundNotSaved), L"IDS_LUMI_MSG_BACKGROUND_NOT_SAVED");
}

TEST(MessageTexts, OtherNumbersHaveNone) {
    for (const int kind : {2, 3, 4, 6, 11, -1, INT_MIN, INT_MAX}) {
        EXPECT_EQ(MessageTextKey(static_cast<MessageBoxKind>(kind)), nullptr) << kind;
    }
}

}  // namespace
