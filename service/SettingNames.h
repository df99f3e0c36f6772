#pragma once
// Names of the settings key and its values, shared with the camera service, and of the snapshot's controls.
namespace SettingNames {

// Below HKEY_CURRENT_USER. With the leading backslash for the suite's registry class, without for the system.
inline constexpr const wchar_t* kKeyPath = L"\\SOFTWARE\\Velmora\\Quillon\\LumiCamera";
inline constexpr const wchar_t* kSystemKeyPath = L"SOFTWARE\\Velmora\\Quillon\\LumiCamera";
inline constexpr const wchar_t* kSystemParentPath = L"SOFTWARE\\Velmora\\Quillon";

inline constexpr const wchar_t* kCameraSwitch = L"lumi_camera_switch";
inline constexpr const wchar_t* kBackgroundReplacement = L"lumi_camera_background_replacement";
inline constexpr const wchar_t* kPreBackgroundReplacement = L"pre_background_replacement";
inline constexpr const wchar_t* kBackgroundImagePath = L"lumi_camera_background_image_path";
inline constexpr const wchar_t* kCustomImageGroup = L"lumi_camera_custom_img_group";
inline constexpr const wchar_t* kSelectedButtonName = L"background_selected_btnName";
inline constexpr const wchar_t* kSyncCustom = L"sync_custom";
inline constexpr const wchar_t* kEyeCorrection = L"lumi_camera_eye_correction";
inline constexpr const wchar_t* kPersonTrack = L"lumi_camera_person_track";
inline constexpr const wchar_t* kBeautyPerson = L"lumi_camera_beauty_person";
inline constexpr const wchar_t* kBeautySmooth = L"lumi_camera_beauty_smooth";
inline constexpr const wchar_t* kBeautyWhite = L"lumi_camera_beauty_white";
inline constexpr const wchar_t* kBeautyEye = L"lumi_camera_beauty_eye";
inline constexpr const wchar_t* kBeautyThin = L"lumi_camera_beauty_thin";
inline constexpr const wchar_t* kInitAlgorithm = L"init_algorithm";
inline constexpr const wchar_t* kSupportHardSwitch = L"support_hard_switch";

// The event by which the system tells of a change of the key; in the session's namespace, any program may hold it.
inline constexpr const wchar_t* kChangedEventName = L"RegEditNotifyChanged";

inline constexpr int kDefaultBeautyLevel = 5;

}  // namespace SettingNames
