#include "tools/service/ServiceOptions.h"

const char kServiceHelp[] =
    "PixoraService [OPTION...] [COMMAND...]\n"
    "Stands in for the camera service: owns the message pipe, prints what its clients do as one line of JSON each, "
    "and\n"
    "sends what it is told, on standard input (one command a line) or on the command line (all of them, in order, "
    "when\n"
    "the first client has said hello).\n"
    "\n"
    "Commands:\n"
    "  changed            the settings changed\n"
    "  reset, close       resets the page; closes the dialog window (the same message)\n"
    "  message            message code 4925245, which Pixora does not listen for\n"
    "  code N [SUB]       any message code, with that sub-code (else -1)\n"
    "  set NAME VALUE     writes the number into HKCU\\SOFTWARE\\Velmora\\Quillon\\LumiCamera, then as \"changed\"\n"
    "  drop               closes the clients' connections\n"
    "  quit               ends the service\n"
    "\n"
    "Options:\n"
    "  --pipe NAME        another pipe than \\\\.\\Pipe\\iNotoraAssistant\n"
    "  --until-eof        end when standard input ends; without it the service goes on, so it can run in the "
    "background\n"
    "  --never-read       leave what clients write in the pipe\n"
    "  --garbage          greet each client with bytes that are no frame\n"
    "  --half-frame       greet each client with the first half of a message\n"
    "  --drop-after N     close a client's connection after N of its messages\n"
    "  --help             this text\n"
    "\n"
    "Exit code: 0; 1 when the pipe cannot be made (another service has it); 2 for a bad command line.\n";

std::optional<ServiceOptions> ParseOptions(std::span<const std::string> words, std::string& error) {
    ServiceOptions options;
    while (!words.empty() && words[0].starts_with("--")) {
        const std::string option = words[0];
        words = words.subspan(1);
        if (option == "--until-eof") {
            options.untilEof = true;
        } else if (option == "--never-read") {
            options.neverRead = true;
        } else if (option == "--garbage") {
            options.garbage = true;
        } else if (option == "--half-frame") {
            options.halfFrame = true;
        } else if (option == "--help") {
            options.help = true;
        } else if (option == "--pipe" && !words.empty()) {
            options.pipeName = words[0];
            words = words.subspan(1);
        } else if (option == "--drop-after" && !words.empty() && ParseNumber(words[0]).value_or(0) > 0) {
            options.dropAfter = *ParseNumber(words[0]);
            words = words.subspan(1);
        } else {
            error = "bad option: " + option;
            return std::nullopt;
        }
    }
    while (!words.empty()) {
        const std::string word = words[0];
        auto command = TakeCommand(words);
        if (!command) {
            error = "bad command: " + word;
            return std::nullopt;
        }
        options.commands.push_back(std::move(*command));
    }
    return options;
}
