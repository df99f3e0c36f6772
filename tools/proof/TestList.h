#pragma once
// The list of the tests that PixoraTests runs, as the packing writes it: UTF-8, one entry a line, fields between tabs.
//
//     version  1.2.3
//     test     name  program  arguments  folder  seconds  NAME=VALUE …
//     without  name  why it is not among them
//     step     what a person does  what must be seen
//
// Paths are below the list's own folder. Pure data and functions, any thread.
#include <optional>
#include <string>
#include <vector>

namespace proof {

struct ListedTest {
    std::string name;
    std::string program;
    std::string arguments;                 // empty: none
    std::string folder;                    // that it runs in
    int seconds = 0;                       // that it may take
    std::vector<std::string> environment;  // "NAME=VALUE"
};

struct Named {
    std::string what;
    std::string text;
};

struct TestList {
    std::string version;
    std::vector<ListedTest> tests;
    std::vector<Named> without;
    std::vector<Named> steps;
};

// Nothing when a line is none of those above.
std::optional<TestList> ParseTestList(const std::string& text);
// Only those whose names contain one of the words; all of them without words.
void Choose(TestList& list, const std::vector<std::string>& words);

}  // namespace proof
