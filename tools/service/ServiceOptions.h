#pragma once
// The stand-in service's command line: options, then commands to carry out when the first client has come.
// Threads: none of its own.
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "service/link/ServiceMessages.h"
#include "suite/common/Utf8.h"
#include "tools/service/ServiceCommand.h"

struct ServiceOptions {
    std::string pipeName = suite::ToUtf8(ServiceMessages::kPipeName);
    bool neverRead = false;
    bool garbage = false;
    bool halfFrame = false;
    int dropAfter = 0;
    bool untilEof = false;
    bool help = false;
    std::vector<ServiceCommand> commands;
};

// `words`: the command line without the program's name. Nothing when it cannot be understood; `error` then says why.
std::optional<ServiceOptions> ParseOptions(std::span<const std::string> words, std::string& error);

extern const char kServiceHelp[];
