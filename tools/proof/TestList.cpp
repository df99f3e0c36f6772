#include "tools/proof/TestList.h"

#include <algorithm>
#include <sstream>

namespace proof {

namespace {

std::vector<std::string> Fields(const std::string& line) {
    std::vector<std::string> fields;
    std::size_t start = 0;
    for (std::size_t end = 0; (end = line.find('\t', start)) != std::string::npos; start = end + 1) {
        fields.push_back(line.substr(start, end - start));
    }
    fields.push_back(line.substr(start));
    return fields;
}

// 0: no number of seconds.
int Seconds(const std::string& text) {
    constexpr std::size_t kMostDigits = 5;
    const bool isNumber = !text.empty() && text.size() <= kMostDigits &&
                          std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
    return isNumber ? std::stoi(text) : 0;
}

bool AddTest(const std::vector<std::string>& fields, TestList& list) {
    constexpr std::size_t kFewest = 6;
    if (fields.size() < kFewest || fields[1].empty() || fields[2].empty()) {
        return false;
    }
    ListedTest test{fields[1], fields[2],          fields[3],
                    fields[4], Seconds(fields[5]), {fields.begin() + kFewest, fields.end()}};
    const bool isSound =
        test.seconds > 0 && std::all_of(test.environment.begin(), test.environment.end(),
                                        [](const std::string& entry) { return entry.find('=') != std::string::npos; });
    list.tests.push_back(std::move(test));
    return isSound;
}

bool AddLine(const std::vector<std::string>& fields, TestList& list) {
    if (fields[0] == "test") {
        return AddTest(fields, list);
    }
    if (fields[0] == "version" && fields.size() == 2) {
        list.version = fields[1];
        return true;
    }
    if (fields.size() != 3) {
        return false;
    }
    if (fields[0] == "without") {
        list.without.push_back({fields[1], fields[2]});
        return true;
    }
    list.steps.push_back({fields[1], fields[2]});
    return fields[0] == "step";
}

}  // namespace

std::optional<TestList> ParseTestList(const std::string& text) {
    TestList list;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        if (!line.empty() && line.back() == '\r') {
            line.pop_back();
        }
        if (!line.empty() && !AddLine(Fields(line), list)) {
            return std::nullopt;
        }
    }
    return list;
}

void Choose(TestList& list, const std::vector<std::string>& words) {
    std::erase_if(list.tests, [&](const ListedTest& test) {
        return !words.empty() && std::none_of(words.begin(), words.end(), [&](const std::string& word) {
            return test.name.find(word) != std::string::npos;
        });
    });
}

}  // namespace proof
