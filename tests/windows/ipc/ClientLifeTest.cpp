// Coming and going: callbacks that are taken away, clients that are destroyed in every state.
#include <windows.h>

#include <winternl.h>

#include <atomic>
#include <future>
#include <memory>

#include "tests/support/ImportHook.h"
#include "tests/windows/ipc/IpcTest.h"
#include "tests/windows/ipc/RawPipe.h"
#include "tools/service/PipeServer.h"

namespace {

using Kind = ServerEvent::Kind;

class ClientLifeTest : public IpcTest {
  protected:
    // A callback that stays inside until it is released, and tells when it is in and when it is out.
    struct SlowCallback {
        Signal entered;
        Signal release;
        std::atomic<bool> left = false;

        IPCMessageClient::MessageCallback Callback() {
            return [this](TagIPCMessageItem&) {
                entered.Set();
                EXPECT_TRUE(release.Wait());
                left = true;
            };
        }
    };

    void SetUp() override {
        IpcTest::SetUp();
        ASSERT_TRUE(server_.Start(PipeName()));
        client_ = std::make_unique<IPCMessageClient>(1, true, false, PipeName());
        ASSERT_TRUE(server_.WaitFor(Kind::kHello, kDeadline));
    }

    PipeServer server_;
    std::unique_ptr<IPCMessageClient> client_;
};

TEST_F(ClientLifeTest, RegisteringAgainReplaces) {
    Inbox first;
    Inbox second;
    client_->RegisterMessageCallback(5, first.Callback());
    client_->RegisterMessageCallback(5, second.Callback());
    server_.Send(Message(5));
    EXPECT_TRUE(second.WaitFor(1));
    EXPECT_TRUE(first.Messages().empty());
    client_->UnRegisterMessageCallbackAll();
}

TEST_F(ClientLifeTest, EmptyCallbackRemoves) {
    Inbox removed;
    Inbox marker;
    client_->RegisterMessageCallback(5, removed.Callback());
    client_->RegisterMessageCallback(5, nullptr);
    client_->RegisterMessageCallback(6, marker.Callback());
    server_.Send(Message(5));
    server_.Send(Message(6));
    EXPECT_TRUE(marker.WaitFor(1));
    EXPECT_TRUE(removed.Messages().empty());
    client_->UnRegisterMessageCallbackAll();
}

TEST_F(ClientLifeTest, UnregisteredCallbacksAreNotCalled) {
    Inbox removed;
    Inbox marker;
    client_->RegisterMessageCallback(5, removed.Callback());
    client_->RegisterMessageCallback(6, removed.Callback());
    client_->UnRegisterMessageCallbackAll();
    client_->RegisterMessageCallback(8, marker.Callback());
    for (const std::int32_t code : {5, 6, 8}) {
        server_.Send(Message(code));
    }
    EXPECT_TRUE(marker.WaitFor(1));
    EXPECT_TRUE(removed.Messages().empty());
    client_.reset();
}

TEST_F(ClientLifeTest, UnregisteringWaitsForTheRunningCallback) {
    SlowCallback slow;
    client_->RegisterMessageCallback(5, slow.Callback());
    server_.Send(Message(5));
    ASSERT_TRUE(slow.entered.Wait());
    auto unregistered = std::async(std::launch::async, [&] {
        client_->UnRegisterMessageCallbackAll();
        return slow.left.load();
    });
    EXPECT_EQ(unregistered.wait_for(kGlance), std::future_status::timeout);
    slow.release.Set();
    EXPECT_TRUE(unregistered.get()) << "the callback had returned";
}

TEST_F(ClientLifeTest, CapturedObjectsAreGoneAfterUnregistering) {
    Signal entered;
    Signal release;
    const auto captured = std::make_shared<int>(1);
    client_->RegisterMessageCallback(5, [&, captured](TagIPCMessageItem&) {
        entered.Set();
        EXPECT_TRUE(release.Wait());
    });
    server_.Send(Message(5));
    ASSERT_TRUE(entered.Wait());
    auto unregistered = std::async(std::launch::async, [&] {
        client_->UnRegisterMessageCallbackAll();
        return captured.use_count();
    });
    EXPECT_EQ(unregistered.wait_for(kGlance), std::future_status::timeout);
    release.Set();
    EXPECT_EQ(unregistered.get(), 1);
}

TEST_F(ClientLifeTest, UnregisteringWithinACallback) {
    Inbox marker;
    Signal done;
    std::atomic<int> calls = 0;
    client_->RegisterMessageCallback(5, [&](TagIPCMessageItem&) {
        ++calls;
        client_->UnRegisterMessageCallbackAll();
        client_->RegisterMessageCallback(6, marker.Callback());
        done.Set();
    });
    server_.Send(Message(5));
    ASSERT_TRUE(done.Wait());
    server_.Send(Message(5));
    server_.Send(Message(6));
    EXPECT_TRUE(marker.WaitFor(1));
    EXPECT_EQ(calls, 1);
    client_.reset();
}

TEST_F(ClientLifeTest, DestroyingWaitsForTheRunningCallback) {
    SlowCallback slow;
    client_->RegisterMessageCallback(5, slow.Callback());
    server_.Send(Message(5));
    ASSERT_TRUE(slow.entered.Wait());
    auto destroyed = std::async(std::launch::async, [&] {
        client_.reset();
        return slow.left.load();
    });
    EXPECT_EQ(destroyed.wait_for(kGlance), std::future_status::timeout);
    slow.release.Set();
    EXPECT_TRUE(destroyed.get()) << "the callback had returned";
}

TEST_F(ClientLifeTest, NoCallbackStartsAfterTheDestructorBegan) {
    SlowCallback slow;
    Inbox later;
    client_->RegisterMessageCallback(5, slow.Callback());
    client_->RegisterMessageCallback(6, later.Callback());
    // One portion, so that the second message is at hand while the first one's callback runs.
    auto bytes = *PipeFrame::EncodeMessage(Message(5));
    const auto more = *PipeFrame::EncodeMessage(Message(6));
    bytes.insert(bytes.end(), more.begin(), more.end());
    server_.SendBytes(bytes);
    ASSERT_TRUE(slow.entered.Wait());
    auto destroyed = std::async(std::launch::async, [&] { client_.reset(); });
    EXPECT_EQ(destroyed.wait_for(kGlance), std::future_status::timeout);
    slow.release.Set();
    destroyed.get();
    EXPECT_TRUE(later.Messages().empty());
}

// A callback may be inside SendMessage to a window of the thread that takes the client down.
class ClientLifeWindowTest : public ClientLifeTest {
  protected:
    static constexpr UINT kQuestion = WM_APP + 1;
    static constexpr LRESULT kAnswer = 42;

    static LRESULT CALLBACK WindowProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
        return message == kQuestion ? kAnswer : DefWindowProcW(window, message, wParam, lParam);
    }

    void SetUp() override {
        ClientLifeTest::SetUp();
        WNDCLASSW windowClass{};
        windowClass.lpfnWndProc = WindowProcedure;
        windowClass.hInstance = GetModuleHandleW(nullptr);
        windowClass.lpszClassName = L"IpcTestWindow";
        RegisterClassW(&windowClass);
        window_ = CreateWindowW(L"IpcTestWindow", L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
        ASSERT_NE(window_, nullptr);
        client_->RegisterMessageCallback(5, [this](TagIPCMessageItem&) {
            entered_.Set();
            DWORD_PTR answer = 0;
            SendMessageTimeoutW(window_, kQuestion, 0, 0, SMTO_NORMAL, static_cast<UINT>(kDeadline.count()), &answer);
            answer_ = static_cast<LRESULT>(answer);
        });
        server_.Send(Message(5));
        ASSERT_TRUE(entered_.Wait());
    }
    void TearDown() override {
        client_.reset();
        DestroyWindow(window_);
        ClientLifeTest::TearDown();
    }

    HWND window_ = nullptr;
    Signal entered_;
    std::atomic<LRESULT> answer_ = 0;
};

TEST_F(ClientLifeWindowTest, DestroyingAnswersTheCallbacksMessage) {
    client_.reset();
    EXPECT_EQ(answer_, kAnswer);
}

TEST_F(ClientLifeWindowTest, UnregisteringAnswersTheCallbacksMessage) {
    client_->UnRegisterMessageCallbackAll();
    EXPECT_EQ(answer_, kAnswer);
}

TEST_F(ClientLifeTest, DestroyingSendsWhatIsQueued) {
    constexpr int kCount = 300;
    for (int i = 0; i < kCount; ++i) {
        TagIPCMessageItem item = Message(5);
        item.slot[3] = i;
        ASSERT_TRUE(client_->PostIPCMessage(item));
    }
    client_.reset();
    for (int i = 0; i < kCount; ++i) {
        const auto message = server_.WaitFor(Kind::kMessage, kDeadline);
        ASSERT_TRUE(message) << i;
        EXPECT_EQ(message->frame.slot[3], i);
    }
}

TEST_F(ClientLifeTest, PostedAndDestroyedAtOnce) {
    for (int i = 0; i < 20; ++i) {
        IPCMessageClient(2, true, false, PipeName()).PostIPCMessage(Ping());
        EXPECT_TRUE(server_.WaitFor(Kind::kMessage, kDeadline)) << i;
        // The server listens again before it reports a client's coming.
    }
}

class ClientEndTest : public IpcTest {};

// From the list of all processes: not every system answers GetProcessHandleCount.
int OpenHandles() {
    std::vector<std::uint64_t> buffer(1 << 17);
    const auto size = static_cast<ULONG>(buffer.size() * sizeof buffer[0]);
    if (NtQuerySystemInformation(SystemProcessInformation, buffer.data(), size, nullptr) != 0) {
        return 0;
    }
    const auto* next = reinterpret_cast<const std::uint8_t*>(buffer.data());
    for (;;) {
        const auto* process = reinterpret_cast<const SYSTEM_PROCESS_INFORMATION*>(next);
        if (reinterpret_cast<ULONG_PTR>(process->UniqueProcessId) == GetCurrentProcessId()) {
            return static_cast<int>(process->HandleCount);
        }
        if (process->NextEntryOffset == 0) {
            return 0;
        }
        next += process->NextEntryOffset;
    }
}

TEST_F(ClientEndTest, DestroyingWhileAWriteIsUnderWay) {
    PipeServer server;
    ASSERT_TRUE(server.Start(PipeName(), {.neverRead = true}));
    const std::vector<std::uint8_t> payload(PipeFrame::kMaxPayload);
    TagIPCMessageItem item = Message(5);
    item.slot[6] = static_cast<std::int32_t>(payload.size());
    item.data = payload.data();
    for (int i = 0; i < 5; ++i) {
        IPCMessageClient client(1, true, false, PipeName());
        ASSERT_TRUE(server.WaitFor(Kind::kConnected, kDeadline));
        EXPECT_TRUE(client.PostIPCMessage(item));
        EXPECT_TRUE(client.PostIPCMessage(item));
    }
}

TEST_F(ClientEndTest, DestroyingWhileConnecting) {
    for (int i = 0; i < 50; ++i) {
        IPCMessageClient client(1, true, false, PipeName());
    }
    // The server comes at some moment of these clients' lives.
    std::atomic<bool> over = false;
    auto clients = std::async(std::launch::async, [&] {
        int count = 0;
        while (!over) {
            IPCMessageClient client(1, true, false, PipeName());
            client.PostIPCMessage(Ping());
            ++count;
        }
        return count;
    });
    for (int i = 0; i < 20; ++i) {
        PipeServer server;
        ASSERT_TRUE(server.Start(PipeName()));
        EXPECT_TRUE(server.WaitFor(Kind::kConnected, kDeadline));
    }
    over = true;
    EXPECT_GT(clients.get(), 0);
}

TEST_F(ClientEndTest, NothingIsLeftOfManyClients) {
    PipeServer server;
    ASSERT_TRUE(server.Start(PipeName()));
    const auto cycle = [&](int count) {
        for (int i = 0; i < count; ++i) {
            Inbox inbox;
            IPCMessageClient client(1, true, false, PipeName());
            client.RegisterMessageCallback(5, inbox.Callback());
            ASSERT_TRUE(server.WaitFor(Kind::kHello, kDeadline));
            EXPECT_TRUE(client.PostIPCMessage(Ping()));
            ASSERT_EQ(server.Send(Message(5)), 1);
            ASSERT_TRUE(inbox.WaitFor(1));
        }
        // Also those that never reach a server.
        for (int i = 0; i < count; ++i) {
            IPCMessageClient client(1, true, false, PipeName() + L"-none");
        }
    };
    cycle(20);
    const int before = OpenHandles();
    ASSERT_GT(before, 0);
    cycle(200);
    // The server may still hold the last client's end.
    EXPECT_LE(OpenHandles(), before + 5);
}

std::uintptr_t NoThread(void*, unsigned, unsigned (*)(void*), void*, unsigned, unsigned*) {
    return 0;
}

class ClientStartTest : public IpcTest {};

TEST_F(ClientStartTest, WithoutAThreadItIsToldAndEverythingElseDoesNothing) {
    Expect("the pipe thread cannot be started(IPCMessageClient::IPCMessageClient)");
    const harness::ImportHook hook(GetModuleHandleW(L"QxIpc.dll"), "_beginthreadex", &NoThread);
    IPCMessageClient client(1, true, false, PipeName());
    EXPECT_FALSE(client.PostIPCMessage(Ping()));
    client.RegisterMessageCallback(5, [](TagIPCMessageItem&) {});
    client.UnRegisterMessageCallbackAll();
}

}  // namespace
