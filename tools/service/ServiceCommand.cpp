#include "tools/service/ServiceCommand.h"

#include <charconv>
#include <limits>

#include "service/link/ServiceMessages.h"

TagIPCMessageItem ServiceCommand::Item() const {
    TagIPCMessageItem item;
    item.slot[ServiceMessages::kDestination] = ServiceMessages::kOwnClientId;
    item.slot[ServiceMessages::kSubCode] = subCode;
    item.slot[ServiceMessages::kMessageCode] = code;
    return item;
}

// Both the signed and the unsigned 32-bit numbers: 0xFFFFFFFF is -1.
std::optional<std::int32_t> ParseNumber(std::string_view word) {
    const bool negative = word.starts_with('-');
    word.remove_prefix(negative ? 1 : 0);
    const bool hexadecimal = word.starts_with("0x") || word.starts_with("0X");
    word.remove_prefix(hexadecimal ? 2 : 0);
    std::uint64_t value = 0;
    const auto result = std::from_chars(word.data(), word.data() + word.size(), value, hexadecimal ? 16 : 10);
    const std::uint64_t most = negative ? 0x80000000u : std::numeric_limits<std::uint32_t>::max();
    if (word.empty() || result.ec != std::errc() || result.ptr != word.data() + word.size() || value > most) {
        return std::nullopt;
    }
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(negative ? 0 - value : value));
}

std::vector<std::string> SplitWords(std::string_view line) {
    static constexpr std::string_view kBlanks = " \t\r\n";
    std::vector<std::string> words;
    for (std::size_t at = line.find_first_not_of(kBlanks); at != std::string_view::npos;) {
        const std::size_t end = std::min(line.find_first_of(kBlanks, at), line.size());
        words.emplace_back(line.substr(at, end - at));
        at = line.find_first_not_of(kBlanks, end);
    }
    return words;
}

std::optional<ServiceCommand> TakeCommand(std::span<const std::string>& words) {
    if (words.empty()) {
        return std::nullopt;
    }
    ServiceCommand command;
    command.word = words[0];
    std::size_t used = 1;
    if (command.word == "changed") {
        command.code = ServiceMessages::kSettingsChangedCode;
    } else if (command.word == "reset" || command.word == "close") {
        command.code = ServiceMessages::kNotificationCode;
        command.subCode = ServiceMessages::kResetSubCode;
    } else if (command.word == "message") {
        command.code = ServiceMessages::kBackgroundGoneCode;
    } else if (command.word == "drop") {
        command.kind = ServiceCommand::Kind::kDrop;
    } else if (command.word == "quit") {
        command.kind = ServiceCommand::Kind::kQuit;
    } else if (command.word == "code" && words.size() > 1 && ParseNumber(words[1])) {
        command.code = *ParseNumber(words[1]);
        used = 2;
        if (words.size() > 2 && ParseNumber(words[2])) {
            command.subCode = *ParseNumber(words[2]);
            used = 3;
        }
    } else if (command.word == "set" && words.size() > 2 && ParseNumber(words[2])) {
        command.kind = ServiceCommand::Kind::kSet;
        command.code = ServiceMessages::kSettingsChangedCode;
        command.valueName = words[1];
        command.value = static_cast<std::uint32_t>(*ParseNumber(words[2]));
        used = 3;
    } else {
        return std::nullopt;
    }
    words = words.subspan(used);
    return command;
}
