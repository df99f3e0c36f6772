// The main program of a fuzz target where the compiler brings no fuzzer: runs every example as it is, then random
// changes of them. Not guided by coverage, so the examples and the words matter. The input that ends the program is
// left in the file "crash-input". Arguments as libFuzzer's: -runs=N or -max_total_time=SECONDS, -seed=N, -dict=FILE,
// files and folders of examples.
#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

#ifdef __SANITIZE_ADDRESS__
#include <sanitizer/common_interface_defs.h>
#endif

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

constexpr std::size_t kMaxLength = 4096;

std::string current;  // the input that is being run

void SaveCurrent() {
    if (std::FILE* file = std::fopen("crash-input", "wb")) {
        std::fwrite(current.data(), 1, current.size(), file);
        std::fclose(file);
        std::fprintf(stderr, "the input is in crash-input\n");
    }
}

extern "C" void OnAbort(int) {
    SaveCurrent();
    std::_Exit(1);
}

void Run(std::string input) {
    current = std::move(input);
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(current.data()), current.size());
}

std::string ReadAll(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

void AddExamples(const std::filesystem::path& path, std::vector<std::string>& examples) {
    if (!std::filesystem::is_directory(path)) {
        examples.push_back(ReadAll(path));
        return;
    }
    for (const auto& entry : std::filesystem::directory_iterator(path)) {
        examples.push_back(ReadAll(entry.path()));
    }
}

// Lines of the form "word", with \" \\ and \xNN, as libFuzzer's dictionaries have them.
std::vector<std::string> ReadWords(const std::filesystem::path& path) {
    std::vector<std::string> words;
    std::ifstream file(path);
    for (std::string line; std::getline(file, line);) {
        const std::size_t begin = line.find('"');
        const std::size_t end = line.rfind('"');
        if (line.starts_with('#') || begin == end) {
            continue;
        }
        std::string word;
        for (std::size_t i = begin + 1; i < end; ++i) {
            if (line[i] == '\\' && line[i + 1] == 'x') {
                word += static_cast<char>(std::strtol(line.substr(i + 2, 2).c_str(), nullptr, 16));
                i += 3;
            } else {
                i += line[i] == '\\' ? 1 : 0;
                word += line[i];
            }
        }
        words.push_back(word);
    }
    return words;
}

class Mutator {
  public:
    Mutator(unsigned seed, std::vector<std::string> examples, std::vector<std::string> words)
        : random_(seed), examples_(std::move(examples)), words_(std::move(words)) {
        examples_.emplace_back();
        words_.emplace_back(1, '\0');
    }

    std::string Next() {
        std::string text = Pick(examples_);
        for (unsigned changes = 1 + random_() % 8; changes > 0; --changes) {
            Change(text);
        }
        text.resize(std::min(text.size(), kMaxLength));
        return text;
    }

  private:
    const std::string& Pick(const std::vector<std::string>& from) { return from[random_() % from.size()]; }

    void Change(std::string& text) {
        const std::size_t at = random_() % (text.size() + 1);
        const std::size_t length = std::min<std::size_t>(random_() % 16, text.size() - at);
        switch (random_() % 7) {
            case 0:
                text.insert(at, Pick(words_));
                break;
            case 1:
                text.replace(at, length, Pick(words_));
                break;
            case 2:
                text.erase(at, length);
                break;
            case 3:
                text.insert(at, 1, static_cast<char>(random_()));
                break;
            case 4:
                if (at < text.size()) {
                    text[at] = static_cast<char>(text[at] ^ (1 << random_() % 8));
                }
                break;
            case 5: {  // a piece of another example
                const std::string& other = Pick(examples_);
                const std::size_t begin = random_() % (other.size() + 1);
                text.insert(at, other, begin, random_() % 64);
                break;
            }
            default: {  // the same again, many times
                const std::string piece = text.substr(at, length);
                for (unsigned times = random_() % 64; times > 0 && text.size() < kMaxLength; --times) {
                    text.insert(at, piece);
                }
                break;
            }
        }
    }

    std::mt19937 random_;
    std::vector<std::string> examples_, words_;
};

}  // namespace

int main(int argc, char** argv) {
    unsigned long runs = 20'000;
    unsigned seed = 1;
    std::chrono::seconds time{0};  // 0: as many runs as it takes
    std::vector<std::string> examples, words;
    for (int i = 1; i < argc; ++i) {
        const std::string argument = argv[i];
        if (argument.starts_with("-runs=")) {
            runs = std::strtoul(argument.c_str() + 6, nullptr, 10);
        } else if (argument.starts_with("-seed=")) {
            seed = static_cast<unsigned>(std::strtoul(argument.c_str() + 6, nullptr, 10));
        } else if (argument.starts_with("-max_total_time=")) {
            time = std::chrono::seconds(std::strtol(argument.c_str() + 16, nullptr, 10));
        } else if (argument.starts_with("-dict=")) {
            words = ReadWords(argument.substr(6));
        } else {
            AddExamples(argument, examples);
        }
    }
    std::signal(SIGABRT, OnAbort);
#ifdef __SANITIZE_ADDRESS__
    __sanitizer_set_death_callback(SaveCurrent);
#else
    std::signal(SIGSEGV, OnAbort);
    std::signal(SIGILL, OnAbort);
    std::signal(SIGFPE, OnAbort);
#endif
    for (const std::string& example : examples) {
        Run(example);
    }
    Mutator mutator(seed, examples, words);
    const auto end = std::chrono::steady_clock::now() + time;
    unsigned long run = 0;
    for (; time.count() > 0 ? std::chrono::steady_clock::now() < end : run < runs; ++run) {
        Run(mutator.Next());
    }
    std::printf("%zu examples and %lu changes of them\n", examples.size(), run);
    return 0;
}
