// PixoraService.exe: a camera service to try the program with. See --help, or ServiceOptions.cpp.
//
// The main thread prints what clients do; another reads standard input and carries out commands. Every line is handed
// to the system before the next event is looked at, so that a script sees it at once.
#include <windows.h>

#include <shellapi.h>

#include <memory>
#include <mutex>
#include <span>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "suite/common/Utf8.h"
#include "tools/service/EventJson.h"
#include "tools/service/JsonLine.h"
#include "tools/service/PipeServer.h"
#include "tools/service/ServiceOptions.h"

namespace {

constexpr wchar_t kSettingsKey[] = L"SOFTWARE\\Velmora\\Quillon\\LumiCamera";

// Straight to the system: the C library's streams are locked while another thread waits for input, and at exit.
void WriteAll(DWORD standardHandle, const std::string& text) {
    const HANDLE output = GetStdHandle(standardHandle);
    for (std::size_t at = 0; at < text.size();) {
        DWORD written = 0;
        if (!WriteFile(output, text.data() + at, static_cast<DWORD>(text.size() - at), &written, nullptr)) {
            return;
        }
        at += written;
    }
}

class Service {
  public:
    explicit Service(ServiceOptions options) : options_(std::move(options)) {}

    // Starts the server; false when it cannot be started.
    bool Start();
    // Prints what clients do until the service is told to end.
    void PrintEvents();
    // Carries out commands from standard input until it ends or the service is told to end.
    void ReadInput();

  private:
    void Print(const JsonLine& line) { Print(line.Take()); }
    void Print(const std::string& line);
    void PrintError(const std::string& text) { Print(JsonLine().Text("event", "error").Text("text", text)); }
    void CarryOut(const ServiceCommand& command);
    void CarryOutLine(const std::string& line);

    const ServiceOptions options_;
    PipeServer server_;
    std::mutex output_;  // held while one line is written
};

bool Service::Start() {
    const PipeServer::Behaviour behaviour{options_.neverRead, options_.garbage, options_.halfFrame, options_.dropAfter};
    if (!server_.Start(suite::FromUtf8(options_.pipeName), behaviour)) {
        PrintError("the pipe cannot be made, error code: " + std::to_string(GetLastError()));
        return false;
    }
    Print(JsonLine().Text("event", "listening").Text("pipe", options_.pipeName));
    return true;
}

void Service::PrintEvents() {
    bool greeted = false;
    while (const auto event = server_.WaitForEvent()) {
        Print(EventJson(*event));
        if (event->kind == ServerEvent::Kind::kHello && !greeted) {
            greeted = true;
            for (const ServiceCommand& command : options_.commands) {
                CarryOut(command);
            }
        }
    }
    server_.Stop();
}

void Service::ReadInput() {
    const HANDLE input = GetStdHandle(STD_INPUT_HANDLE);
    std::string line;
    char byte = 0;
    DWORD count = 0;
    while (ReadFile(input, &byte, 1, &count, nullptr) && count == 1) {
        if (byte != '\n') {
            line += byte;
            continue;
        }
        CarryOutLine(std::exchange(line, {}));
    }
    CarryOutLine(line);
    if (options_.untilEof) {
        server_.RequestStop();
    }
}

void Service::CarryOutLine(const std::string& line) {
    const std::vector<std::string> words = SplitWords(line);
    std::span<const std::string> left = words;
    while (!left.empty()) {
        const auto command = TakeCommand(left);
        if (!command) {
            PrintError("bad command: " + line);
            return;
        }
        CarryOut(*command);
    }
}

void Service::CarryOut(const ServiceCommand& command) {
    JsonLine line;
    line.Text("event", "command").Text("command", command.word);
    switch (command.kind) {
        case ServiceCommand::Kind::kSet: {
            const std::wstring name = suite::FromUtf8(command.valueName);
            const LSTATUS error = RegSetKeyValueW(HKEY_CURRENT_USER, kSettingsKey, name.c_str(), REG_DWORD,
                                                  &command.value, sizeof command.value);
            line.Text("name", command.valueName).Number("value", command.value);
            if (error != ERROR_SUCCESS) {
                PrintError("the value cannot be written, error code: " + std::to_string(error));
                return;
            }
            [[fallthrough]];
        }
        case ServiceCommand::Kind::kSend:
            line.Number("code", command.code).Number("subCode", command.subCode);
            line.Number("clients", server_.Send(command.Item()));
            break;
        case ServiceCommand::Kind::kDrop:
            server_.DisconnectClients();
            break;
        case ServiceCommand::Kind::kQuit:
            server_.RequestStop();
            break;
    }
    Print(line);
}

void Service::Print(const std::string& line) {
    const std::lock_guard lock(output_);
    WriteAll(STD_OUTPUT_HANDLE, line + '\n');
}

std::vector<std::string> CommandLineWords() {
    std::vector<std::string> words;
    int count = 0;
    if (LPWSTR* arguments = CommandLineToArgvW(GetCommandLineW(), &count)) {
        for (int i = 1; i < count; ++i) {
            words.push_back(suite::ToUtf8(arguments[i]));
        }
        LocalFree(arguments);
    }
    return words;
}

}  // namespace

int main() {
    std::string error;
    const auto options = ParseOptions(CommandLineWords(), error);
    if (!options) {
        WriteAll(STD_ERROR_HANDLE, error + "\n\n" + kServiceHelp);
        return 2;
    }
    if (options->help) {
        WriteAll(STD_OUTPUT_HANDLE, kServiceHelp);
        return 0;
    }
    const auto service = std::make_shared<Service>(*options);
    if (!service->Start()) {
        return 1;
    }
    // Left behind at exit, since nothing ends its read from standard input.
    std::thread([service] { service->ReadInput(); }).detach();
    service->PrintEvents();
    return 0;
}
