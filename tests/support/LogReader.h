#pragma once
// Reads the logs of one folder as they are written, each line once; whoever wrote it, and across the renaming of a full
// file. What a line means for a test is TestLog's business. Thread: one at a time.
#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace harness {

struct LoggedLine {
    std::string program;  // the log's name without extension
    int level = 0;        // 0: this is no line of a log, and the text is all of it
    unsigned long thread = 0;
    std::string text;  // "message(Class::Function)"

    // "[L4] message(Class::Function)", as tests name lines.
    std::string Form() const { return "[L" + std::to_string(level) + "] " + text; }
};

// "2026-11-21 10:15:30.123 [L4] [1234] message(Class::Function)", with or without a line end.
LoggedLine ParseLogLine(const std::string& program, std::string line);

class LogReader {
  public:
    explicit LogReader(std::filesystem::path folder) : folder_(std::move(folder)) {}

    const std::filesystem::path& Folder() const { return folder_; }
    // The whole lines since the last call; at first all that are there. Those of one program are in their order.
    std::vector<LoggedLine> TakeNew();

  private:
    struct Position {
        std::uint64_t file = 0;  // the system's number of the file, which it keeps when it is renamed
        std::uint64_t offset = 0;
    };

    void TakeNewOf(const std::wstring& program, std::vector<LoggedLine>& lines);

    const std::filesystem::path folder_;
    std::map<std::wstring, Position> positions_;  // by program
};

}  // namespace harness
