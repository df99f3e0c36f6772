#include "tests/support/LogReader.h"

#include <windows.h>

#include <algorithm>
#include <regex>
#include <set>

#include "suite/common/Handle.h"
#include "suite/common/Utf8.h"

namespace harness {

namespace {

namespace fs = std::filesystem;

constexpr wchar_t kExtension[] = L".log";
constexpr int kMostOlderFiles = 9;

struct OpenFile {
    suite::Handle handle;
    std::uint64_t number = 0;
    std::uint64_t size = 0;
};

OpenFile Open(const fs::path& path) {
    constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    OpenFile file{
        suite::Handle(CreateFileW(path.c_str(), GENERIC_READ, kShareAll, nullptr, OPEN_EXISTING, 0, nullptr))};
    BY_HANDLE_FILE_INFORMATION info{};
    if (file.handle && GetFileInformationByHandle(file.handle.Get(), &info)) {
        file.number = (std::uint64_t{info.nFileIndexHigh} << 32) + info.nFileIndexLow;
        file.size = (std::uint64_t{info.nFileSizeHigh} << 32) + info.nFileSizeLow;
    }
    return file;
}

// Up to the end of the last whole line.
std::string ReadFrom(const OpenFile& file, std::uint64_t offset) {
    std::string text(static_cast<std::size_t>(file.size - std::min(offset, file.size)), '\0');
    LARGE_INTEGER start{};
    start.QuadPart = static_cast<LONGLONG>(offset);
    DWORD read = 0;
    if (!SetFilePointerEx(file.handle.Get(), start, nullptr, FILE_BEGIN) ||
        !ReadFile(file.handle.Get(), text.data(), static_cast<DWORD>(text.size()), &read, nullptr)) {
        return {};
    }
    text.resize(read);
    const std::size_t end = text.rfind('\n');
    text.resize(end == std::string::npos ? 0 : end + 1);
    return text;
}

// "Pixora" of "Pixora.log" and of "Pixora.2.log".
std::wstring ProgramOf(const fs::path& file) {
    const fs::path name = file.stem();
    const std::wstring number = name.extension().wstring();
    const bool older = number.size() == 2 && number[1] >= L'1' && number[1] <= L'9';
    return older ? name.stem().wstring() : name.wstring();
}

}  // namespace

LoggedLine ParseLogLine(const std::string& program, std::string line) {
    while (!line.empty() && (line.back() == '\n' || line.back() == '\r')) {
        line.pop_back();
    }
    // The text is apart: it may be too long for the expression.
    static const std::regex kHead(R"(\d{4}-\d\d-\d\d \d\d:\d\d:\d\d\.\d{3} \[L(\d)\] \[(\d{1,10})\] )");
    std::smatch parts;
    const std::string head = line.substr(0, 64);
    if (!std::regex_search(head, parts, kHead, std::regex_constants::match_continuous)) {
        return {program, 0, 0, line};
    }
    return {program, std::stoi(parts[1]), std::stoul(parts[2]), line.substr(static_cast<std::size_t>(parts.length(0)))};
}

std::vector<LoggedLine> LogReader::TakeNew() {
    std::set<std::wstring> programs;
    std::error_code ignored;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder_, ignored)) {
        if (entry.path().extension() == kExtension) {
            programs.insert(ProgramOf(entry.path()));
        }
    }
    std::vector<LoggedLine> lines;
    for (const std::wstring& program : programs) {
        TakeNewOf(program, lines);
    }
    return lines;
}

void LogReader::TakeNewOf(const std::wstring& program, std::vector<LoggedLine>& lines) {
    // All are opened before the first is read: none is read twice when one is renamed meanwhile.
    std::vector<OpenFile> newestFirst;
    for (int number = 0; number <= kMostOlderFiles; ++number) {
        std::wstring name = program;
        if (number > 0) {
            name += L"." + std::to_wstring(number);
        }
        OpenFile file = Open(folder_ / (name + kExtension));
        const bool twice = std::any_of(newestFirst.begin(), newestFirst.end(),
                                       [&file](const OpenFile& other) { return other.number == file.number; });
        if (file.handle && !twice) {
            newestFirst.push_back(std::move(file));
        }
    }
    if (newestFirst.empty()) {
        return;
    }
    Position& position = positions_[program];
    auto current = std::find_if(newestFirst.begin(), newestFirst.end(),
                                [&position](const OpenFile& file) { return file.number == position.file; });
    if (current == newestFirst.end() || current->size < position.offset) {
        current = newestFirst.end() - 1;  // new to this reader, or removed and made anew
        position = {};
    }
    const std::string name = suite::ToUtf8(program);
    for (;; --current) {
        const std::string text = ReadFrom(*current, position.offset);
        for (std::size_t begin = 0; begin < text.size();) {
            const std::size_t end = text.find('\n', begin);
            lines.push_back(ParseLogLine(name, text.substr(begin, end - begin)));
            begin = end + 1;
        }
        position = {current->number, position.offset + text.size()};
        if (current == newestFirst.begin()) {
            return;
        }
        position.offset = 0;
    }
}

}  // namespace harness
