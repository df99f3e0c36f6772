#pragma once
// Names of the settings key and of its values that belong to no effect; those of the effects are in EffectTable.h.
// Camera service and driver share them. Constant data, any thread.
namespace SettingNames {

// Below HKEY_CURRENT_USER. With the leading backslash for the suite's registry class, without for the system.
inline constexpr const wchar_t* kKeyPath = L"\\SOFTWARE\\Velmora\\Quillon\\LumiCamera";
inline constexpr const wchar_t* kSystemKeyPath = L"SOFTWARE\\Velmora\\Quillon\\LumiCamera";
inline constexpr const wchar_t* kSystemParentPath = L"SOFTWARE\\Velmora\\Quillon";

inline constexpr const wchar_t* kBackgroundReplacement = L"lumi_camera_background_replacement";
inline constexpr const wchar_t* kPreBackgroundReplacement = L"pre_background_replacement";
inline constexpr const wchar_t* kBackgroundImagePath = L"lumi_camera_background_image_path";
inline constexpr const wchar_t* kCustomImageGroup = L"lumi_camera_custom_img_group";
inline constexpr const wchar_t* kSelectedButtonName = L"background_selected_btnName";
inline constexpr const wchar_t* kSyncCustom = L"sync_custom";
// Written by the camera service and the driver.
inline constexpr const wchar_t* kInitAlgorithm = L"init_algorithm";
inline constexpr const wchar_t* kFilterDriverInstall = L"filter_driver_install";
inline constexpr const wchar_t* kSupportHardSwitch = L"support_hard_switch";

// The event by which the system tells of a change of the key; in the session's namespace, any program may hold it.
inline constexpr const wchar_t* kChangedEventName = L"RegEditNotifyChanged";

}  // namespace SettingNames
