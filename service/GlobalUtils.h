#pragma once
// The words that every page and window shares: the kinds that travel on the notification hub, and the status snapshot.
//
// Why: pages, windows and the model know each other only by these. Numbers are fixed where the registry, the camera
// service or another window counts on them; a kind may hold a number that has no name here.
// Threads: plain values, any thread.
#include <cstdint>
#include <string>
#include <tuple>
#include <unordered_map>

namespace GlobalUtils {

// State of a switch, the number that the registry holds: only 1 is on.
enum class FeatureStatus : std::int32_t { kOff = 0, kOn = 1 };

// The beauty slider that moved.
enum class BeautyKind : std::int32_t { kSmooth = 0, kWhite = 1, kEye = 2, kFace = 3 };

// The message box that the home page shows.
enum class MessageBoxKind : std::int32_t {
    kFileUnreadable = 0,       // a chosen file cannot be opened or decoded
    kBackgroundGone = 1,       // the video of a custom background is gone, or the camera service says so
    kCameraUnavailable = 5,    // the preview cannot start, or the camera failed
    kImageTooLarge = 7,        // larger than 4096 x 4096
    kVideoTooLarge = 8,        // larger than 1920 x 1200
    kAlgorithmNotReady = 9,    // the camera service could not initialise its algorithm
    kBackgroundNotSaved = 10,  // the folder of the user's own backgrounds does not take another picture
};

enum class ScreenLockKind : std::int32_t { kLocked = 0 };
// The computer goes to sleep, or has woken up.
enum class PowerKind : std::int32_t { kSuspend = 0, kResume = 1 };
enum class WndMoveKind : std::int32_t { kMoved = 0 };
// Says that the preview window has to be placed again.
enum class PreviewPlaceKind : std::int32_t { kPlaceAgain = 0 };

// A window message that the main window passes on to the pages.
struct OnListenKindInfo {
    std::uintptr_t wParam = 0;
    std::intptr_t lParam = 0;
};

// Channels of the hub; each carries one kind.
inline constexpr std::int32_t kMessageBoxChannel = 0;
inline constexpr std::int32_t kBeautyChannel = 1;
inline constexpr std::int32_t kPreviewPlaceChannel = 2;
inline constexpr std::int32_t kScreenLockChannel = 3;
inline constexpr std::int32_t kWndMoveChannel = 4;
inline constexpr std::int32_t kOnListenChannel = 6;
inline constexpr std::int32_t kPowerChannel = 7;

// The background part of a snapshot.
struct CustBkgrdInfo {
    std::wstring path;     // full path of the custom image or video in use; empty when there is none
    std::wstring btnName;  // control name of the background button that is selected; empty when unknown
};

// Switch states by control name, slider levels by control name, background.
using FeatureStatusTuple = std::tuple<std::unordered_map<std::wstring, FeatureStatus>,
                                      std::unordered_map<std::wstring, std::int32_t>, CustBkgrdInfo>;

}  // namespace GlobalUtils
