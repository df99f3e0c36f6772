// A camera service that says "changed" as fast as the pipe takes it: the window stays usable, and neither memory nor
// the log grows with it. PIXORA_FLOOD_SECONDS says how long.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <iostream>
#include <thread>
#include <vector>

#include "suite/ipc/PipeFrame.h"
#include "tests/e2e/support/Machine.h"
#include "tests/e2e/support/ProcessFootprint.h"
#include "tests/e2e/support/Program.h"
#include "tests/support/Environment.h"
#include "tests/windows/ipc/RawPipe.h"

namespace e2e {
namespace {

using Clock = std::chrono::steady_clock;
namespace Protocol = harness::Protocol;

// Frames that travel together, so that the pipe and not this thread is what limits them.
constexpr std::size_t kFramesAtOnce = 500;
constexpr std::size_t kMoreBytes = 16u << 20;
// Of one refresh, and how many refreshes there may be.
constexpr int kLinesOfARefresh = 4;
constexpr int kRefreshesASecond = 10;

// The server's end, on a thread of its own while it lives.
class Flood {
  public:
    explicit Flood(RawPipe& pipe) : thread_([this, &pipe] { Run(pipe); }) {}
    ~Flood() {
        stop_ = true;
        thread_.join();
    }
    long long Sent() const { return sent_; }

  private:
    void Run(RawPipe& pipe) {
        const auto one = *PipeFrame::EncodeMessage(Protocol::FromService(Protocol::kSettingsChangedCode));
        RawPipe::Bytes frames;
        for (std::size_t i = 0; i < kFramesAtOnce; ++i)
            frames.insert(frames.end(), one.begin(), one.end());
        while (!stop_ && pipe.Write(frames))
            sent_ += kFramesAtOnce;
    }

    std::atomic<bool> stop_ = false;
    std::atomic<long long> sent_ = 0;
    std::thread thread_;
};

class FloodTest : public testing::Test {
  protected:
    void SetUp() override {
        Machine::ResetToInstalled();
        ASSERT_TRUE(pipe_.Valid());
        program_.emplace();
        ASSERT_TRUE(pipe_.Accept());
        ASSERT_EQ(pipe_.Read(PipeFrame::kHelloSize).size(), PipeFrame::kHelloSize);
        ASSERT_TRUE(program_->WaitForWindow());
    }

    // How long the window takes to answer another process, in milliseconds.
    double AnswerMs() const {
        const auto start = Clock::now();
        DWORD_PTR result = 0;
        EXPECT_TRUE(SendMessageTimeoutW(program_->Window(), WM_NULL, 0, 0, SMTO_ABORTIFHUNG, 5000, &result))
            << "the window hangs";
        return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
    }

    RawPipe pipe_{Protocol::kPipeName};
    std::optional<Program> program_;
};

TEST_F(FloodTest, TheWindowStaysUsableAndNothingGrows) {
    const std::chrono::seconds duration(FromEnvironment("PIXORA_FLOOD_SECONDS", 5));
    const Flood flood(pipe_);
    ASSERT_TRUE(WaitUntil([&] { return flood.Sent() > 0; }));
    const ProcessFootprint before = FootprintOf(program_->Process(), program_->ProcessId());
    const auto linesBefore = Machine::Log().size();
    const long long sentBefore = flood.Sent();
    const auto start = Clock::now();
    std::vector<double> answers;
    while (Clock::now() - start < duration) {
        answers.push_back(AnswerMs());
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
    }
    // A click still works, and what it changed is painted.
    ASSERT_TRUE(program_->Reveal(L"focus_person_btn"));
    program_->Click(L"focus_person_btn");
    EXPECT_TRUE(WaitUntil([] { return Machine::Number(L"lumi_camera_person_track") == 1U; }));
    const HWND window = program_->Window();
    RedrawWindow(window, nullptr, nullptr, RDW_INVALIDATE);
    EXPECT_TRUE(WaitUntil([&] { return !GetUpdateRect(window, nullptr, FALSE); }));

    const double seconds = std::chrono::duration<double>(Clock::now() - start).count();
    const ProcessFootprint after = FootprintOf(program_->Process(), program_->ProcessId());
    const auto lines = Machine::Log().size() - linesBefore;
    std::ranges::sort(answers);
    std::cout << static_cast<long long>(static_cast<double>(flood.Sent() - sentBefore) / seconds)
              << " messages a second taken, " << static_cast<double>(lines) / seconds
              << " lines of the log a second; answers of the window: middle " << answers[answers.size() / 2]
              << " ms, worst " << answers.back() << " ms; before: " << before.Text() << "; after: " << after.Text()
              << std::endl;
    EXPECT_LE(after.residentBytes, before.residentBytes + kMoreBytes);
    EXPECT_LE(static_cast<double>(lines), (seconds + 1) * kRefreshesASecond * kLinesOfARefresh);
    EXPECT_TRUE(program_->Runs());
}

}  // namespace
}  // namespace e2e
