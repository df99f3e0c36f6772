#include <windows.h>

#include <string>

#include "diagnostics/Sections.h"
#include "service/link/ServiceMessages.h"
#include "suite/common/Utf8.h"

namespace diagnostics {

// Only asks for the pipe and does not connect: a service would take the connection for a client.
void AddService(Report& report) {
    report.Section("Camera service");
    const std::string pipe = suite::ToUtf8(ServiceMessages::kPipeName);
    constexpr DWORD kShortestWaitMs = 1;
    if (WaitNamedPipeW(ServiceMessages::kPipeName, kShortestWaitMs)) {
        report.Fine(pipe + " takes connections");
        return;
    }
    switch (const DWORD error = GetLastError()) {
        case ERROR_SEM_TIMEOUT:
            report.Wrong(pipe + " is there but takes no connection", "Restart the camera service.");
            break;
        case ERROR_ACCESS_DENIED:
            report.Wrong(pipe + " refuses this user", "The camera service must let every user open its pipe.");
            break;
        default:
            report.Wrong(pipe + " is not there, error " + std::to_string(error) +
                             ": settings are stored, but nobody applies them",
                         "Start the camera service.");
    }
}

}  // namespace diagnostics
