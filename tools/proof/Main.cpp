// PixoraTests.exe: runs the test programs that lie beside it on a real PC, and leaves report.html. Started by
// run-tests.cmd; --help tells its options.
#include <windows.h>

#include <shellscalingapi.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "suite/common/Handle.h"
#include "suite/common/LocalFolder.h"
#include "suite/common/Utf8.h"
#include "tools/proof/Machine.h"
#include "tools/proof/ReportPage.h"
#include "tools/proof/TestList.h"
#include "tools/proof/TestProgram.h"

namespace proof {
namespace {

namespace fs = std::filesystem;

constexpr char kHelp[] =
    "run-tests [--yes] [WORD...]\n"
    "Runs the tests of Pixora on this PC and leaves report.html beside run-tests.cmd.\n"
    "  --yes    begins without asking\n"
    "  WORD...  only tests whose names contain one of the words\n"
    "Exit code: 0 all passed, 1 some failed, 2 not begun or stopped, 3 something could not be given back.\n";

constexpr char kIntroduction[] =
    "This tries Pixora on this PC. It takes about a quarter of an hour.\n"
    "\n"
    "  - Windows open and close by themselves, and the mouse and the keyboard are used. Leave both alone meanwhile.\n"
    "    Save your work in other programs before.\n"
    "  - Cameras are not used: the tests bring one of their own. Nothing is sent anywhere.\n"
    "  - Pixora's settings (registry of this user), the theme and the size of text, and the folder\n"
    "    C:\\ProgramData\\Comms\\LumiCamera are kept before and given back afterwards, also after Ctrl+C. After a "
    "power\n"
    "    failure the next start of the tests gives them back.\n"
    "  - At the end report.html is beside run-tests.cmd.\n";

enum ExitCode { kAllPassed = 0, kSomeFailed = 1, kNotRun = 2, kNotGivenBack = 3 };

HANDLE g_stop = nullptr;  // set by Ctrl+C, and when the window is closed
HANDLE g_over = nullptr;  // set when all is given back

void Say(const std::string& text) {
    std::fwrite(text.data(), 1, text.size(), stdout);
    std::fflush(stdout);
}

BOOL WINAPI OnControl(DWORD) {
    SetEvent(g_stop);
    // The process may end when this returns.
    constexpr DWORD kPatienceMs = 60'000;
    WaitForSingleObject(g_over, kPatienceMs);
    return TRUE;
}

// False when the person, or the end of the input, says no.
bool Ask(const char* question) {
    Say(question);
    char line[16];
    return std::fgets(line, sizeof line, stdin) != nullptr && WaitForSingleObject(g_stop, 0) != WAIT_OBJECT_0;
}

std::string ReadFile(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::string Now() {
    SYSTEMTIME now;
    GetLocalTime(&now);
    char text[64];
    std::snprintf(text, sizeof text, "%04d-%02d-%02d %02d:%02d", now.wYear, now.wMonth, now.wDay, now.wHour,
                  now.wMinute);
    return text;
}

int SecondsSince(ULONGLONG start) {
    constexpr ULONGLONG kMsPerSecond = 1000;
    return static_cast<int>((GetTickCount64() - start) / kMsPerSecond);
}

// The programs find the libraries beside the first of them, wherever they lie themselves.
void AddToPath(const fs::path& folder) {
    std::wstring path(GetEnvironmentVariableW(L"PATH", nullptr, 0) + 1, L'\0');
    path.resize(GetEnvironmentVariableW(L"PATH", path.data(), static_cast<DWORD>(path.size())));
    SetEnvironmentVariableW(L"PATH", (folder.wstring() + L";" + path).c_str());
}

class Session {
  public:
    // `root`: the folder of run-tests.cmd.
    explicit Session(fs::path root) : root_(std::move(root)), tests_(root_ / L"tests") {}

    bool ReadList(const std::vector<std::string>& words) {
        auto list = ParseTestList(ReadFile(tests_ / L"tests.txt"));
        if (!list) {
            return false;
        }
        Choose(*list, words);
        list_ = std::move(*list);
        return !list_.tests.empty();
    }
    void RunTests();
    // After everything is given back, so that the diagnostics program sees the user's own settings.
    void WriteReport(std::vector<std::string> remarks);
    bool AllPassed() const { return report_.isWhole && Count(report_.results).failed == 0; }
    bool IsWhole() const { return report_.isWhole; }

  private:
    std::string Diagnose() const;
    std::vector<std::string> Pictures() const;

    const fs::path root_;
    const fs::path tests_;
    TestList list_;
    Report report_;
};

void Session::RunTests() {
    std::error_code ignored;
    fs::remove_all(root_ / L"screenshots", ignored);
    fs::remove_all(root_ / L"results", ignored);
    fs::create_directories(root_ / L"results");
    AddToPath(tests_ / L"bin");
    report_.begun = Now();
    const ULONGLONG start = GetTickCount64();
    for (std::size_t i = 0; i < list_.tests.size() && report_.isWhole; ++i) {
        const ListedTest& test = list_.tests[i];
        Say(std::to_string(i + 1) + "/" + std::to_string(list_.tests.size()) + " " + test.name + " ...");
        fs::create_directories(tests_ / suite::FromUtf8(test.folder));
        const fs::path output = root_ / L"results" / (suite::FromUtf8(test.name) + L".txt");
        const ULONGLONG begun = GetTickCount64();
        const Ending ending = RunProgram(test, tests_, output, g_stop);
        report_.results.push_back({test.name, SecondsSince(begun), ReadCases(test.name, ReadFile(output), ending)});
        const Counts counts = Count({report_.results.back()});
        Say(" " + std::to_string(counts.passed) + " passed, " + std::to_string(counts.failed) + " failed, " +
            std::to_string(counts.skipped) + " skipped\n");
        report_.isWhole = ending.how != Ending::How::kStopped;
    }
    report_.seconds = SecondsSince(start);
}

std::string Session::Diagnose() const {
    constexpr int kSeconds = 60;
    const fs::path output = root_ / L"results" / L"PixoraDiagnostics.txt";
    const ListedTest program{"PixoraDiagnostics", "bin\\PixoraDiagnostics.exe", "", "bin", kSeconds, {}};
    ResetEvent(g_stop);
    const Ending ending = RunProgram(program, tests_, output, g_stop);
    const std::string text = ReadFile(output);
    return ending.how == Ending::How::kByItself && !text.empty() ? text : "The diagnostics program gave no report.";
}

std::vector<std::string> Session::Pictures() const {
    std::vector<std::string> names;
    std::error_code ignored;
    for (const fs::directory_entry& entry : fs::directory_iterator(root_ / L"screenshots", ignored)) {
        names.push_back(suite::ToUtf8(entry.path().filename().wstring()));
    }
    std::sort(names.begin(), names.end());
    return names;
}

void Session::WriteReport(std::vector<std::string> remarks) {
    report_.version = list_.version;
    report_.without = list_.without;
    report_.steps = list_.steps;
    report_.remarks = std::move(remarks);
    report_.diagnostics = Diagnose();
    report_.pictures = Pictures();
    const fs::path page = root_ / L"report.html";
    std::ofstream file(page, std::ios::binary);
    file << MakePage(report_);
    Say(file.flush() ? "\nThe report: " + suite::ToUtf8(page.wstring()) + "\n" : "\nThe report cannot be written.\n");
}

struct Options {
    bool asks = true;
    bool help = false;
    std::vector<std::string> words;
};

Options Parse(const std::vector<std::wstring>& arguments) {
    Options options;
    for (const std::wstring& argument : arguments) {
        if (argument == L"--yes") {
            options.asks = false;
        } else if (argument.starts_with(L"-")) {
            options.help = true;
        } else {
            options.words.push_back(suite::ToUtf8(argument));
        }
    }
    return options;
}

int RunAll(Session& session) {
    Machine machine;
    if (const std::string reason = machine.Prepare(); !reason.empty()) {
        Say(reason + "\n");
        return kNotRun;
    }
    try {
        session.RunTests();
    } catch (...) {
        machine.GiveBack();
        throw;
    }
    const std::vector<std::string> remarks = machine.GiveBack();
    session.WriteReport(remarks);
    for (const std::string& remark : remarks) {
        Say(remark + "\n");
    }
    if (!remarks.empty()) {
        return kNotGivenBack;
    }
    return session.AllPassed() ? kAllPassed : session.IsWhole() ? kSomeFailed : kNotRun;
}

int Run(const Options& options) {
    if (options.help) {
        Say(kHelp);
        return kNotRun;
    }
    const fs::path root = fs::path(suite::ProgramPath()).parent_path().parent_path();
    Session session(root);
    if (!session.ReadList(options.words)) {
        Say("There is nothing to run: no test is named so, or tests.txt is damaged.\n");
        return kNotRun;
    }
    Say(kIntroduction);
    if (options.asks && !Ask("\nPress Enter to begin, or Ctrl+C to leave. ")) {
        return kNotRun;
    }
    const int code = RunAll(session);
    if (options.asks) {
        Ask("Press Enter to close this window. ");
    }
    return code;
}

}  // namespace
}  // namespace proof

int wmain(int argc, wchar_t** argv) {
    SetConsoleOutputCP(CP_UTF8);
    SetProcessDpiAwareness(PROCESS_PER_MONITOR_DPI_AWARE);
    const suite::Handle stop(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    const suite::Handle over(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    proof::g_stop = stop.Get();
    proof::g_over = over.Get();
    SetConsoleCtrlHandler(proof::OnControl, TRUE);
    int code = proof::kNotRun;
    try {
        code = proof::Run(proof::Parse({argv + 1, argv + argc}));
    } catch (const std::exception& error) {
        proof::Say(std::string(error.what()) + "\n");
    }
    SetEvent(over.Get());
    return code;
}
