#include "windows/MessageTexts.h"

const wchar_t* MessageTextKey(GlobalUtils::MessageBoxKind kind) {
    using GlobalUtils::MessageBoxKind;
    switch (kind) {
        case MessageBoxKind::kFileUnreadable:
            return L"IDS_LUMI_MSG_FILE_UNREADABLE";
        case MessageBoxKind::kBackgroundGone:
            return L"IDS_LUMI_MSG_SERVICE_PROBLEM";
        case MessageBoxKind::kCameraUnavailable:
            return L"IDS_LUMI_MSG_CAMERA_UNAVAILABLE";
        case MessageBoxKind::kImageTooLarge:
            return L"IDS_LUMI_MSG_IMAGE_TOO_LARGE";
        case MessageBoxKind::kVideoTooLarge:
            return L"IDS_LUMI_MSG_VIDEO_TOO_LARGE";
        case MessageBoxKind::kAlgorithmNotReady:
            return L"IDS_LUMI_MSG_EFFECTS_NOT_STARTED";
        case MessageBoxKind::kBackgroundNotSaved:
            return L"IDS_LUMI_MSG_BACKGROUND_NOT_SAVED";
    }
    return nullptr;
}
