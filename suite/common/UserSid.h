#pragma once
// Users' identifiers in their string form, as access lists and folder names have them: "S-1-5-21-...".
//
// Why: who owns a pipe, a process or a folder is compared, logged and used as a name, all of it by that text. Asks no
// network: names of accounts are not looked at. Any thread. May throw std::bad_alloc.
#include <windows.h>

#include <string>

namespace suite {

// Empty when it is none.
std::wstring SidText(PSID identifier);
// The user that a token stands for; empty when the token does not tell.
std::wstring TokenUserSid(HANDLE token);
// Whether the token may act as an administrator: a member whose rights are not taken away.
bool TokenIsAdministrator(HANDLE token);
// The user that this process runs as; empty when the system does not tell.
std::wstring OwnUserSid();
// The owner of a file, folder or pipe that was opened with READ_CONTROL. `error`: 0, else the system's; the text is
// empty then, and where the object has no owner.
std::wstring OwnerSid(HANDLE object, DWORD& error);

}  // namespace suite
