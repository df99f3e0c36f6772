#pragma once
// What the stand-in service can be told to do, on its command line or on its standard input.
//   changed            the settings changed: message 0x4B273B
//   reset, close       message 0x22711 with sub-code 0x40000: resets the page, closes the dialog window
//   message            message 0x4B273D, which Pixora does not listen for
//   code N [SUB]       message N with that sub-code, else -1
//   set NAME VALUE     writes the number into the settings key, then as "changed"
//   drop               closes the clients' connections
//   quit               ends the service
// Numbers are decimal, with or without a sign, or hexadecimal after 0x. Words are separated by blanks.
// Threads: none of its own.
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "suite/ipc/TagIPCMessageItem.h"

struct ServiceCommand {
    enum class Kind { kSend, kSet, kDrop, kQuit };

    Kind kind = Kind::kSend;
    std::string word;       // as it was told
    std::int32_t code = 0;  // kSend and kSet: the message to send
    std::int32_t subCode = -1;
    std::string valueName;    // kSet
    std::uint32_t value = 0;  // kSet

    // The message to send, to the program's endpoint.
    TagIPCMessageItem Item() const;
};

std::optional<std::int32_t> ParseNumber(std::string_view word);
std::vector<std::string> SplitWords(std::string_view line);

// Takes one command from the front of `words`. Nothing when no command is there; `words` is then as it was.
std::optional<ServiceCommand> TakeCommand(std::span<const std::string>& words);
