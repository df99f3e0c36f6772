#pragma once
// Whether the server behind a pipe is one that the client may believe.
//
// Why: a pipe's name belongs to whoever makes it first, and any user of the machine may. Two facts count, since each
// has a hole that the other closes: the pipe's owner, which nobody can forge, but which is the first maker's where
// several processes serve one name; and the user of the serving process, which a plain user is not told of a service,
// and whose number may be another process's by now. What is known of both has to be sound. Pure, any thread.
#include <string>

namespace suite {

struct PipeServerIdentity {
    // Identifiers in text form; empty: the system does not tell.
    std::wstring pipeOwner;
    std::wstring processUser;
    bool processIsAdministrator = false;
};

// True: the system, an account of services, an administrator, or the user `ownUser` himself.
bool IsTrustedServer(const PipeServerIdentity& server, const std::wstring& ownUser);

}  // namespace suite
