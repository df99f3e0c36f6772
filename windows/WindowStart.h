#pragma once
// What both kinds of top-level window do when they start, and how a second start finds the first one's window.
// Thread: UI thread.
#include <windows.h>

#include <string>

namespace DuiLib {
class CPaintManagerUI;
struct TNotifyUI;
}  // namespace DuiLib

namespace WindowStart {

// Both kinds of window share one class name, so that a second start finds whichever the first one shows.
inline constexpr wchar_t kWindowClass[] = L"Camera";

// WS_POPUP | WS_BORDER | WS_SYSMENU | WS_MINIMIZEBOX
inline constexpr DWORD kWindowStyle = 0x808A0000;

// `owner` is the class in whose name failures are logged ("PxMainWnd").
void MakeDpiAware(const std::wstring& owner);
// Makes the program's folder the current one and the string tables' parent.
void SetValuePath(const std::wstring& owner);
// Resource folder and language of the user, and the window title in it.
std::wstring SetResourcesAndLanguage(HINSTANCE instance);

// Brings the window of that class to the front, restored or shown; nothing when there is none.
void ActivateWindow(const wchar_t* className);

// Asks the window to close as its system menu would and ends the message loop. UI thread.
void CloseAndQuit(HWND window);

// WM_ENDSESSION: where the session does end, the process may end as soon as the message is answered, without any
// clean-up; log and usage events are written out before. Four seconds at most.
void OnEndSession(WPARAM ends);

// Opens the link of a "link" notification with the user's default program; nothing for other notifications.
void FollowLink(const DuiLib::TNotifyUI& msg);

// Switches "msgbox_content" to markup: its links can be clicked, so its text no longer drags the window.
void UseHtmlMessage(DuiLib::CPaintManagerUI& manager);

}  // namespace WindowStart
