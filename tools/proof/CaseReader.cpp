#include "tools/proof/CaseReader.h"

#include <algorithm>
#include <cstdio>
#include <optional>
#include <sstream>

namespace proof {

namespace {

constexpr char kBegins[] = "[ RUN      ] ";
constexpr char kPasses[] = "[       OK ] ";
constexpr char kFails[] = "[  FAILED  ] ";
constexpr char kSkips[] = "[  SKIPPED ] ";
constexpr std::size_t kLongestText = 20'000;

// "Suite.Name, where GetParam() = 5 (12 ms)" is that case's name and more.
bool IsEndOf(const std::string& line, const char* mark, const std::string& name) {
    return line.starts_with(mark + name) && line.find(" ms)") != std::string::npos;
}

std::optional<Result> EndOf(const std::string& line, const std::string& name) {
    if (IsEndOf(line, kPasses, name)) {
        return Result::kPassed;
    }
    if (IsEndOf(line, kFails, name)) {
        return Result::kFailed;
    }
    if (IsEndOf(line, kSkips, name)) {
        return Result::kSkipped;
    }
    return std::nullopt;
}

std::string TextOf(const Ending& ending) {
    char text[64];
    switch (ending.how) {
        case Ending::How::kNotStarted:
            std::snprintf(text, sizeof text, "it could not be started: error %lu", ending.code);
            return text;
        case Ending::How::kTooLong:
            return "it did not end in time, and was ended";
        case Ending::How::kStopped:
            return "it was stopped";
        case Ending::How::kByItself:
            break;
    }
    std::snprintf(text, sizeof text, "it ended with code %lu (0x%08lX)", ending.code, ending.code);
    return text;
}

std::string Shortened(std::string text) {
    if (text.size() > kLongestText) {
        text = "…\n" + text.substr(text.size() - kLongestText);
    }
    return text;
}

}  // namespace

std::vector<Case> ReadCases(const std::string& name, const std::string& output, const Ending& ending) {
    std::vector<Case> cases;
    std::optional<Case> running;
    std::string between;  // printed outside of any case
    std::istringstream stream(output);
    for (std::string line; std::getline(stream, line);) {
        if (!line.empty() && line.back() == '\r') {
            line.pop_back();
        }
        if (!running) {
            if (line.starts_with(kBegins)) {
                running = Case{line.substr(sizeof(kBegins) - 1), Result::kPassed, {}};
            } else {
                between += line + "\n";
            }
            continue;
        }
        if (const auto result = EndOf(line, running->name)) {
            running->result = *result;
            running->text = *result == Result::kPassed ? std::string() : Shortened(running->text);
            cases.push_back(std::move(*running));
            running.reset();
        } else {
            running->text += line + "\n";
        }
    }
    if (running) {
        running->result = Result::kFailed;
        running->text = Shortened(running->text) + TextOf(ending) + "\n";
        cases.push_back(std::move(*running));
    }
    const bool isFine = ending.how == Ending::How::kByItself && ending.code == 0;
    const bool isTold =
        std::any_of(cases.begin(), cases.end(), [](const Case& c) { return c.result == Result::kFailed; });
    if (isFine && cases.empty()) {
        cases.push_back({name, Result::kPassed, {}});
    } else if (!isFine && !isTold) {
        cases.push_back({name, Result::kFailed, Shortened(between) + TextOf(ending) + "\n"});
    }
    return cases;
}

}  // namespace proof
