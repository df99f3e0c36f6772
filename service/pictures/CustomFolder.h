#pragma once
// Where the user's own backgrounds lie. Constant data and pure functions, any thread.
#include <string>

namespace pictures::CustomFolder {

// Shared by all users of the machine; the pictures of each lie in a folder below it. Its parent is the installation's.
inline constexpr const wchar_t* kBase = L"C:\\ProgramData\\Comms\\LumiCamera";
inline constexpr const wchar_t* kPictureSuffix = L".jpg";

inline std::wstring OfUser(const std::wstring& userSid) {
    return std::wstring(kBase) + L"\\" + userSid;
}

// Empty without a user.
inline std::wstring PicturePath(const std::wstring& userSid, const std::wstring& itemName) {
    return userSid.empty() ? std::wstring() : OfUser(userSid) + L"\\" + itemName + kPictureSuffix;
}

}  // namespace pictures::CustomFolder
