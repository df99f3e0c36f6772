#include "suite/ipc/ServerIdentity.h"

#include "suite/common/Handle.h"
#include "suite/common/UserSid.h"

namespace suite {

PipeServerIdentity IdentityOfServer(HANDLE pipe) {
    PipeServerIdentity server;
    DWORD error = ERROR_SUCCESS;
    server.pipeOwner = OwnerSid(pipe, error);

    ULONG processId = 0;
    if (!GetNamedPipeServerProcessId(pipe, &processId)) {
        return server;
    }
    const Handle process(OpenProcess(PROCESS_QUERY_LIMITED_INFORMATION, FALSE, processId));
    HANDLE opened = nullptr;
    if (process && OpenProcessToken(process.Get(), TOKEN_QUERY, &opened)) {
        const Handle token(opened);
        server.processUser = TokenUserSid(token.Get());
        server.processIsAdministrator = TokenIsAdministrator(token.Get());
    }
    return server;
}

}  // namespace suite
