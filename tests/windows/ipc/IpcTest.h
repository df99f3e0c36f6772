#pragma once
// What the tests of the pipe client share: a pipe name of their own, received messages, and the log.
#include <windows.h>

#include <gmock/gmock.h>

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

#include "suite/ipc/IPCMessageClient.h"
#include "suite/ipc/PipeFrame.h"
#include "tests/support/Protocol.h"
#include "tests/support/TestLog.h"
#include "tests/support/Wait.h"

inline constexpr std::chrono::milliseconds kDeadline = harness::kPatience;
// How long a test looks whether something happens that must not.
inline constexpr std::chrono::milliseconds kGlance{200};

// An event to wait for, once.
class Signal {
  public:
    void Set();
    bool Wait();

  private:
    std::mutex mutex_;
    std::condition_variable changed_;
    bool set_ = false;
};

// Messages that callbacks received, with the thread they came on.
class Inbox {
  public:
    struct Message {
        PipeFrame::Frame frame;
        DWORD thread = 0;
    };

    // A callback that puts messages in here. Borrows the inbox, which must outlive the client.
    IPCMessageClient::MessageCallback Callback();
    // False when they do not all come in time.
    bool WaitFor(std::size_t count);
    std::vector<Message> Messages();

  private:
    std::mutex mutex_;
    std::condition_variable changed_;
    std::vector<Message> messages_;
};

// The message that the program sends after every change.
TagIPCMessageItem Ping();
// A message of that code without payload.
TagIPCMessageItem Message(std::int32_t code);

// Each test has its own pipe name.
class IpcTest : public testing::Test {
  protected:
    void SetUp() override;

    const std::wstring& PipeName() const { return pipeName_; }
    // How many lines of the log hold `text` since the test began.
    static int LinesWith(const std::string& text) { return harness::TestLog::Count(testing::HasSubstr(text)); }
    static bool WaitForLine(const std::string& text) { return harness::TestLog::WaitFor(testing::HasSubstr(text)); }
    // A line of level 4 with this text comes.
    static void Expect(const std::string& text) { harness::TestLog::Expect(testing::HasSubstr(text)); }

  private:
    std::wstring pipeName_;
};
