// The second process of the suite libraries' tests: it logs, reports or crashes as its command line says.
// Exit code 0 when all went as the command expects, 1 when not, 2 for an unknown command.
#include <windows.h>

#include <map>
#include <string>
#include <vector>

#include "tests/windows/suite/HelperCommands.h"

int wmain(int argc, wchar_t** argv) {
    static const std::map<std::wstring, int (*)(const Arguments&)> commands = {
        {L"log", LogMany},
        {L"early", LogEarly},
        {L"forever", LogForever},
        {L"report", Report},
        {L"report-many", ReportMany},
        {L"report-write-out", ReportWriteOut},
        {L"report-write-out-in-vain", ReportWriteOutInVain},
        {L"report-uploader", ReportUploader},
        {L"report-full", ReportFull},
        {L"report-limits", ReportLimits},
        {L"url", ReceiveUrl},
        {L"crash", Crash},
    };
    const Arguments arguments(argv + 1, argv + argc);
    const auto command = arguments.empty() ? commands.end() : commands.find(arguments[0]);
    return command == commands.end() ? 2 : command->second(arguments);
}
