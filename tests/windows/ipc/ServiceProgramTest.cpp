// The real PixoraService.exe: started as a script would start it, told what to do, and read line by line.
#include <condition_variable>
#include <filesystem>
#include <thread>

#include "suite/common/Handle.h"
#include "tests/support/SettingsKey.h"
#include "tests/windows/ipc/IpcTest.h"

namespace {

namespace Protocol = harness::Protocol;

// A running program with its standard input and output.
class Program {
  public:
    explicit Program(const std::wstring& arguments) {
        SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
        HANDLE inputRead = nullptr;
        HANDLE inputWrite = nullptr;
        HANDLE outputRead = nullptr;
        HANDLE outputWrite = nullptr;
        CreatePipe(&inputRead, &inputWrite, &inherited, 0);
        CreatePipe(&outputRead, &outputWrite, &inherited, 0);
        const suite::Handle childInput(inputRead);
        const suite::Handle childOutput(outputWrite);
        input_ = suite::Handle(inputWrite);
        output_ = suite::Handle(outputRead);
        SetHandleInformation(inputWrite, HANDLE_FLAG_INHERIT, 0);
        SetHandleInformation(outputRead, HANDLE_FLAG_INHERIT, 0);

        wchar_t self[MAX_PATH]{};
        GetModuleFileNameW(nullptr, self, MAX_PATH);
        const std::filesystem::path program = std::filesystem::path(self).parent_path() / L"PixoraService.exe";
        std::wstring commandLine = L"\"" + program.wstring() + L"\" " + arguments;
        STARTUPINFOW startup{};
        startup.cb = sizeof startup;
        startup.dwFlags = STARTF_USESTDHANDLES;
        startup.hStdInput = inputRead;
        startup.hStdOutput = outputWrite;
        startup.hStdError = outputWrite;
        PROCESS_INFORMATION process{};
        if (CreateProcessW(program.c_str(), commandLine.data(), nullptr, nullptr, TRUE, CREATE_NO_WINDOW, nullptr,
                           nullptr, &startup, &process)) {
            process_ = suite::Handle(process.hProcess);
            CloseHandle(process.hThread);
        }
        reader_ = std::thread(&Program::ReadLines, this);
    }
    ~Program() {
        if (process_ && WaitForSingleObject(process_.Get(), 0) != WAIT_OBJECT_0) {
            TerminateProcess(process_.Get(), 99);
        }
        reader_.join();
    }

    bool Started() const { return static_cast<bool>(process_); }
    void Tell(const std::string& line) {
        DWORD written = 0;
        const std::string text = line + "\n";
        EXPECT_TRUE(WriteFile(input_.Get(), text.data(), static_cast<DWORD>(text.size()), &written, nullptr));
    }
    void CloseInput() { input_.Reset(); }
    // The next line; "(nothing)" when none comes in time or the output has ended.
    std::string Line() {
        std::unique_lock lock(mutex_);
        changed_.wait_for(lock, kDeadline, [this] { return next_ < lines_.size() || ended_; });
        return next_ < lines_.size() ? lines_[next_++] : "(nothing)";
    }
    // Lines up to one that begins so, which is returned.
    std::string LineThatBegins(const std::string& start) {
        for (;;) {
            std::string line = Line();
            if (line == "(nothing)" || line.starts_with(start)) {
                return line;
            }
        }
    }
    // The exit code; nothing when the program does not end in time.
    std::optional<DWORD> ExitCode() {
        DWORD code = 0;
        if (WaitForSingleObject(process_.Get(), static_cast<DWORD>(kDeadline.count())) != WAIT_OBJECT_0 ||
            !GetExitCodeProcess(process_.Get(), &code)) {
            return std::nullopt;
        }
        return code;
    }
    bool StillRuns() {
        return WaitForSingleObject(process_.Get(), static_cast<DWORD>(kGlance.count())) == WAIT_TIMEOUT;
    }

  private:
    void ReadLines() {
        std::string line;
        char byte = 0;
        DWORD count = 0;
        while (ReadFile(output_.Get(), &byte, 1, &count, nullptr) && count == 1) {
            if (byte != '\n') {
                line += byte;
                continue;
            }
            const std::lock_guard lock(mutex_);
            lines_.push_back(std::exchange(line, {}));
            changed_.notify_all();
        }
        const std::lock_guard lock(mutex_);
        ended_ = true;
        changed_.notify_all();
    }

    suite::Handle input_;
    suite::Handle output_;
    suite::Handle process_;
    std::thread reader_;
    std::mutex mutex_;
    std::condition_variable changed_;
    // Guarded by mutex_.
    std::vector<std::string> lines_;
    std::size_t next_ = 0;
    bool ended_ = false;
};

class ServiceProgramTest : public IpcTest {
  protected:
    std::wstring PipeOption() const { return L"--pipe " + PipeName() + L" "; }
};

TEST_F(ServiceProgramTest, Conversation) {
    Program service(PipeOption());
    ASSERT_TRUE(service.Started());
    ASSERT_THAT(service.Line(), testing::StartsWith(R"({"event":"listening","pipe":"\\\\.\\Pipe\\PixoraIpcTest-)"));

    Inbox inbox;
    auto client = std::make_unique<IPCMessageClient>(Protocol::kOwnClientId, true, false, PipeName());
    for (const std::int32_t code :
         {Protocol::kSettingsChangedCode, Protocol::kNotificationCode, Protocol::kBackgroundGoneCode, 77}) {
        client->RegisterMessageCallback(code, inbox.Callback());
    }
    EXPECT_EQ(service.Line(), R"({"event":"connect","client":1})");
    EXPECT_EQ(service.Line(), R"({"event":"hello","client":1,"clientId":13500416})");

    EXPECT_TRUE(client->PostIPCMessage(Ping()));
    EXPECT_EQ(service.Line(),
              R"({"event":"message","client":1,"destination":13434880,"subCode":-1,"code":4925243,"slot3":0,)"
              R"("slot4":-1,"slot5":0,"payloadLength":2,"text":"","flag":0,"reserved":0,"payload":"3100",)"
              R"("payloadText":"1"})");

    for (const char* command : {"changed", "reset", "close", "message", "code 77 8"}) {
        service.Tell(command);
    }
    ASSERT_TRUE(inbox.WaitFor(5));
    const std::pair<int, int> expected[] = {{Protocol::kSettingsChangedCode, -1},
                                            {Protocol::kNotificationCode, Protocol::kResetSubCode},
                                            {Protocol::kNotificationCode, Protocol::kResetSubCode},
                                            {Protocol::kBackgroundGoneCode, -1},
                                            {77, 8}};
    for (std::size_t i = 0; i < 5; ++i) {
        EXPECT_EQ(inbox.Messages()[i].frame.slot[2], expected[i].first) << i;
        EXPECT_EQ(inbox.Messages()[i].frame.slot[1], expected[i].second) << i;
    }
    EXPECT_EQ(service.Line(), R"({"event":"command","command":"changed","code":4925243,"subCode":-1,"clients":1})");
    client.reset();
    EXPECT_EQ(service.LineThatBegins(R"({"event":"disconnect")"), R"({"event":"disconnect","client":1})");
    service.Tell("quit");
    EXPECT_EQ(service.Line(), R"({"event":"command","command":"quit"})");
    EXPECT_EQ(service.ExitCode(), 0u);
}

TEST_F(ServiceProgramTest, SetWritesTheSettingsKey) {
    constexpr wchar_t kName[] = L"PixoraIpcTest";
    Program service(PipeOption());
    service.Line();
    Inbox inbox;
    IPCMessageClient client(1, true, false, PipeName());
    client.RegisterMessageCallback(Protocol::kSettingsChangedCode, inbox.Callback());
    ASSERT_THAT(service.LineThatBegins(R"({"event":"hello")"), testing::HasSubstr("\"clientId\":1"));
    service.Tell("set PixoraIpcTest 0x80000001");
    ASSERT_TRUE(inbox.WaitFor(1));
    EXPECT_EQ(harness::SettingsKey::Number(kName), static_cast<int>(0x80000001));
    harness::SettingsKey::Remove(kName);
    client.UnRegisterMessageCallbackAll();
}

TEST_F(ServiceProgramTest, CommandsOnTheCommandLineAreForTheFirstClient) {
    Program service(PipeOption() + L"close quit");
    service.Line();
    Inbox inbox;
    IPCMessageClient client(1, true, false, PipeName());
    client.RegisterMessageCallback(Protocol::kNotificationCode, inbox.Callback());
    EXPECT_TRUE(inbox.WaitFor(1)) << "also when the service ends right after it";
    EXPECT_EQ(service.ExitCode(), 0u);
    client.UnRegisterMessageCallbackAll();
}

TEST_F(ServiceProgramTest, EndOfInputEndsItOnlyWhenTold) {
    Program until(PipeOption() + L"--until-eof");
    until.Line();
    until.CloseInput();
    EXPECT_EQ(until.ExitCode(), 0u);

    Program background(PipeOption());
    background.Line();
    background.CloseInput();
    EXPECT_TRUE(background.StillRuns());
    IPCMessageClient client(1, true, false, PipeName());
    EXPECT_THAT(background.LineThatBegins(R"({"event":"hello")"), testing::StartsWith("{"));
}

TEST_F(ServiceProgramTest, SecondServiceOnTheSamePipe) {
    Program first(PipeOption());
    first.Line();
    Program second(PipeOption());
    EXPECT_THAT(second.Line(), testing::StartsWith(R"({"event":"error","text":"the pipe cannot be made)"));
    EXPECT_EQ(second.ExitCode(), 1u);
    first.Tell("quit");
    EXPECT_EQ(first.ExitCode(), 0u);
}

TEST_F(ServiceProgramTest, Misbehaviours) {
    Expect("a frame from the pipe server is refused");
    Program service(PipeOption() + L"--garbage --drop-after 2");
    service.Line();
    IPCMessageClient client(1, true, false, PipeName());
    EXPECT_EQ(service.LineThatBegins(R"({"event":"disconnect")"), R"({"event":"disconnect","client":1})");
    EXPECT_TRUE(WaitForLine("a frame from the pipe server is refused"));
}

TEST_F(ServiceProgramTest, BadWords) {
    Program service(L"--nonsense");
    EXPECT_EQ(service.Line(), "bad option: --nonsense");
    EXPECT_EQ(service.ExitCode(), 2u);
    Program told(PipeOption());
    told.Line();
    told.Tell("say \"hello\"");
    EXPECT_EQ(told.Line(), R"({"event":"error","text":"bad command: say \"hello\""})");
}

}  // namespace
