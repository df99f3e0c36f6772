#include "tests/support/TestLog.h"

#include <algorithm>
#include <memory>
#include <mutex>
#include <sstream>

#include "suite/common/LocalFolder.h"
#include "suite/common/Utf8.h"

namespace harness::TestLog {

namespace {

constexpr int kFailureLevel = 4;

struct Noted : LoggedLine {
    bool visible = true;  // not before the last StartOver
    bool judged = false;  // told as a failure, or taken by the test
};

struct Announcement {
    LineMatcher line;
    bool needed = false;
    bool came = false;
};

struct State {
    std::mutex lock;
    // Guarded by lock.
    std::vector<std::unique_ptr<LogReader>> readers;
    std::vector<Noted> lines;
    std::vector<Announcement> announcements;
};

// Never destroyed: threads of the program under test may end after the test's.
State& TheState() {
    static State* const state = new State;
    return *state;
}

bool IsFailure(const LoggedLine& line) {
    return line.level >= kFailureLevel || line.level == 0;
}

std::string Described(const LineMatcher& line) {
    std::ostringstream text;
    line.DescribeTo(&text);
    return text.str();
}

// REQUIRES: the lock is held.
void TakeNew(State& state) {
    for (const auto& reader : state.readers) {
        for (LoggedLine& line : reader->TakeNew()) {
            state.lines.push_back({std::move(line)});
        }
    }
}

// REQUIRES: the lock is held. Each line may be announced before or after it came.
void CompareWithAnnouncements(State& state) {
    for (Noted& line : state.lines) {
        for (Announcement& announced : state.announcements) {
            if (IsFailure(line) && announced.line.Matches(line.Form())) {
                announced.came = true;
                line.judged = true;
            }
        }
    }
}

bool AllNeededCame() {
    State& state = TheState();
    const std::scoped_lock lock(state.lock);
    TakeNew(state);
    CompareWithAnnouncements(state);
    return std::all_of(state.announcements.begin(), state.announcements.end(),
                       [](const Announcement& each) { return each.came || !each.needed; });
}

void Announce(const LineMatcher& line, bool needed) {
    State& state = TheState();
    const std::scoped_lock lock(state.lock);
    state.announcements.push_back({line, needed});
}

}  // namespace

void Expect(const LineMatcher& line) {
    Announce(line, true);
}

void Allow(const LineMatcher& line) {
    Announce(line, false);
}

std::vector<std::string> TakeFailures() {
    State& state = TheState();
    const std::scoped_lock lock(state.lock);
    TakeNew(state);
    CompareWithAnnouncements(state);
    std::vector<std::string> failures;
    for (Noted& line : state.lines) {
        if (IsFailure(line) && !line.judged) {
            line.judged = true;
            failures.push_back(line.text);
        }
    }
    return failures;
}

std::vector<std::string> Lines(const std::string& program) {
    static const std::string own = suite::ToUtf8(suite::ProgramName());
    State& state = TheState();
    const std::scoped_lock lock(state.lock);
    TakeNew(state);
    std::vector<std::string> lines;
    for (const Noted& line : state.lines) {
        if (line.visible && line.program == (program.empty() ? own : program)) {
            lines.push_back(line.Form());
        }
    }
    return lines;
}

std::vector<std::string> LinesOf(const std::string& function, const std::string& program) {
    std::vector<std::string> lines = Lines(program);
    std::erase_if(lines, [&](const std::string& line) { return !line.ends_with("(" + function + ")"); });
    return lines;
}

int Count(const LineMatcher& line, const std::string& program) {
    const std::vector<std::string> lines = Lines(program);
    return static_cast<int>(
        std::count_if(lines.begin(), lines.end(), [&line](const std::string& each) { return line.Matches(each); }));
}

bool WaitFor(const LineMatcher& line, const std::string& program) {
    return WaitUntil([&] { return Count(line, program) > 0; });
}

void StartOver() {
    State& state = TheState();
    const std::scoped_lock lock(state.lock);
    TakeNew(state);
    for (Noted& line : state.lines) {
        line.visible = false;
    }
}

void Watch(const std::filesystem::path& folder) {
    State& state = TheState();
    const std::scoped_lock lock(state.lock);
    state.readers.push_back(std::make_unique<LogReader>(folder));
}

void Unwatch(const std::filesystem::path& folder) {
    State& state = TheState();
    const std::scoped_lock lock(state.lock);
    TakeNew(state);
    std::erase_if(state.readers, [&folder](const auto& reader) { return reader->Folder() == folder; });
}

std::vector<std::string> Everything() {
    State& state = TheState();
    const std::scoped_lock lock(state.lock);
    std::vector<std::string> lines;
    for (const Noted& line : state.lines) {
        lines.push_back(line.program + " " + line.Form());
    }
    return lines;
}

void JudgeLines() {
    State& state = TheState();
    const std::scoped_lock lock(state.lock);
    TakeNew(state);
    CompareWithAnnouncements(state);
    for (Noted& line : state.lines) {
        if (IsFailure(line) && !line.judged) {
            ADD_FAILURE() << (line.level == 0 ? "no line of a log, in that of " : "unexpected in the log of ")
                          << line.program << ": " << line.Form();
            line.judged = true;
        }
    }
}

void BeginTest() {
    JudgeLines();
    State& state = TheState();
    const std::scoped_lock lock(state.lock);
    state.lines.clear();
}

void EndTest(std::chrono::milliseconds patience) {
    // Threads of the program may still be about to write them.
    const bool over = testing::Test::IsSkipped() || testing::Test::HasFailure();
    WaitUntil(AllNeededCame, over ? std::chrono::milliseconds(0) : patience);
    JudgeLines();
    State& state = TheState();
    const std::scoped_lock lock(state.lock);
    for (const Announcement& announced : state.announcements) {
        if (announced.needed && !announced.came && !testing::Test::IsSkipped()) {
            ADD_FAILURE() << "announced and not in the log: a line that " << Described(announced.line);
        }
    }
    state.announcements.clear();
}

}  // namespace harness::TestLog
