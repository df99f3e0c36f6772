// Servers that are absent, late, busy, dead, slow or lying.
#include <atomic>
#include <memory>

#include "suite/common/Handle.h"
#include "suite/ipc/RetrySchedule.h"
#include "tests/support/ImportHook.h"
#include "tests/windows/ipc/IpcTest.h"
#include "tests/windows/ipc/RawPipe.h"
#include "tests/windows/ipc/SkippedWaits.h"
#include "tools/service/PipeServer.h"

namespace {

using Kind = ServerEvent::Kind;
using Bytes = std::vector<std::uint8_t>;

// The library's clock, which can be put forward.
class Clock {
  public:
    Clock() {
        g_ahead = 0;
        g_tick = hook_.Original<decltype(&GetTickCount64)>();
    }
    static void Advance(ULONGLONG ms) { g_ahead += ms; }

  private:
    static ULONGLONG WINAPI Tick() { return g_tick() + g_ahead; }

    static inline std::atomic<ULONGLONG> g_ahead{0};
    static inline decltype(&GetTickCount64) g_tick = nullptr;
    const harness::ImportHook hook_{GetModuleHandleW(L"QxIpc.dll"), "GetTickCount64", &Tick};
};

class ClientFaultTest : public IpcTest {
  protected:
    // Writes `bytes` to a client; true when the client then closes the connection.
    bool ClosesAfter(const Bytes& bytes) {
        RawPipe server(PipeName());
        IPCMessageClient client(1, true, false, PipeName());
        return server.Accept() && server.Write(bytes) && server.WaitForEnd();
    }
};

TEST_F(ClientFaultTest, NoServer) {
    IPCMessageClient client(1, true, false, PipeName());
    for (int i = 0; i < 100; ++i) {
        EXPECT_FALSE(client.PostIPCMessage(Ping()));
    }
    EXPECT_EQ(LinesWith("IPCMessageClient"), 0) << "an absent server is no news";
}

TEST_F(ClientFaultTest, PipeThatCannotBeOpenedIsToldOnce) {
    Expect("the pipe cannot be opened, error code: 32");
    // Something that is there and refuses: a file that nobody else may open.
    wchar_t folder[MAX_PATH]{};
    wchar_t file[MAX_PATH]{};
    GetTempPathW(MAX_PATH, folder);
    ASSERT_NE(GetTempFileNameW(folder, L"ipc", 0, file), 0u);
    const suite::Handle owner(
        CreateFileW(file, GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, FILE_FLAG_DELETE_ON_CLOSE, nullptr));
    ASSERT_TRUE(owner);
    IPCMessageClient client(1, true, false, file);
    EXPECT_FALSE(client.PostIPCMessage(Ping()));
    EXPECT_FALSE(client.PostIPCMessage(Ping()));
    EXPECT_EQ(LinesWith("the pipe cannot be opened, error code: 32"), 1);
}

// What is opened in between is a file, whose server may be nobody that can be believed, and that ends at once.
TEST_F(ClientFaultTest, AFailureToOpenIsToldAgainAfterAnOpening) {
    constexpr char kClosed[] = "the pipe cannot be opened, error code: 32";
    Expect(kClosed);
    harness::TestLog::Allow(testing::HasSubstr("the pipe's server may be anybody's"));
    const Clock clock;
    wchar_t folder[MAX_PATH]{};
    wchar_t file[MAX_PATH]{};
    GetTempPathW(MAX_PATH, folder);
    ASSERT_NE(GetTempFileNameW(folder, L"ipc", 0, file), 0u);
    const auto hold = [&file] {
        return suite::Handle(CreateFileW(file, GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr));
    };
    suite::Handle owner = hold();
    IPCMessageClient client(1, false, false, file);
    EXPECT_EQ(LinesWith(kClosed), 1);
    owner.Reset();
    client.PostIPCMessage(Ping());
    ASSERT_TRUE(harness::WaitUntil([&] { return static_cast<bool>(owner = hold()); })) << "the client lets go of it";
    Clock::Advance(suite::RetrySchedule::kFirstPenaltyMs);
    EXPECT_FALSE(client.PostIPCMessage(Ping()));
    EXPECT_EQ(LinesWith(kClosed), 2);
    owner.Reset();
    DeleteFileW(file);
}

TEST_F(ClientFaultTest, ServerComesLater) {
    IPCMessageClient client(42, true, false, PipeName());
    EXPECT_FALSE(client.PostIPCMessage(Ping()));
    PipeServer server;
    ASSERT_TRUE(server.Start(PipeName()));
    const auto hello = server.WaitFor(Kind::kHello, kDeadline);
    ASSERT_TRUE(hello) << "the client looks for a server by itself";
    EXPECT_EQ(hello->frame.clientId, 42);
    EXPECT_TRUE(client.PostIPCMessage(Ping()));
    EXPECT_TRUE(server.WaitFor(Kind::kMessage, kDeadline));
}

TEST_F(ClientFaultTest, AnAbsentServerIsLookedForEveryTwoSeconds) {
    const SkippedWaits waits(8);
    IPCMessageClient client(42, true, false, PipeName());
    EXPECT_THAT(waits.UntilAtRest(), testing::ElementsAre(50, 100, 200, 400, 800, 1600, 2000, 2000));
    EXPECT_EQ(waits.Tries(), 9);
}

TEST_F(ClientFaultTest, PostingFindsAServerThatCameLater) {
    IPCMessageClient client(42, false, false, PipeName());
    EXPECT_FALSE(client.PostIPCMessage(Ping()));
    PipeServer server;
    ASSERT_TRUE(server.Start(PipeName()));
    EXPECT_TRUE(client.PostIPCMessage(Ping())) << "already the first message after the server's start arrives";
    EXPECT_TRUE(server.WaitFor(Kind::kMessage, kDeadline));
}

TEST_F(ClientFaultTest, WithoutReconnectOnlyPostingLooks) {
    PipeServer server;
    ASSERT_TRUE(server.Start(PipeName()));
    IPCMessageClient client(42, false, false, PipeName());
    ASSERT_TRUE(server.WaitFor(Kind::kHello, kDeadline));
    server.DisconnectClients();
    ASSERT_TRUE(WaitForLine("the pipe connection is lost"));
    EXPECT_FALSE(server.WaitFor(Kind::kHello, kGlance));
    EXPECT_TRUE(client.PostIPCMessage(Ping()));
    EXPECT_TRUE(server.WaitFor(Kind::kMessage, kDeadline));
}

TEST_F(ClientFaultTest, ServerIsRestarted) {
    Inbox inbox;
    IPCMessageClient client(1, true, false, PipeName());
    client.RegisterMessageCallback(5, inbox.Callback());
    for (std::size_t round = 1; round <= 3; ++round) {
        PipeServer server;
        ASSERT_TRUE(server.Start(PipeName()));
        ASSERT_TRUE(server.WaitFor(Kind::kHello, kDeadline)) << round;
        EXPECT_TRUE(client.PostIPCMessage(Ping()));
        EXPECT_TRUE(server.WaitFor(Kind::kMessage, kDeadline)) << round;
        EXPECT_EQ(server.Send(Message(5)), 1);
        ASSERT_TRUE(inbox.WaitFor(round));
    }
    ASSERT_TRUE(WaitForLine("the pipe connection is lost"));
    EXPECT_EQ(LinesWith("the pipe connection is lost"), 1) << "short connections are told once";
}

// Each of three connections ends in the same way; the second one has lasted ten seconds.
TEST_F(ClientFaultTest, AnEndIsToldAgainAfterAConnectionThatLasted) {
    const Clock clock;
    PipeServer server;
    ASSERT_TRUE(server.Start(PipeName()));
    IPCMessageClient client(1, true, false, PipeName());
    ASSERT_TRUE(server.WaitFor(Kind::kHello, kDeadline));
    server.DisconnectClients();
    ASSERT_TRUE(server.WaitFor(Kind::kHello, kDeadline)) << "the first end is told by now";
    EXPECT_EQ(LinesWith("the pipe connection is lost"), 1);
    Clock::Advance(suite::RetrySchedule::kSettledMs);
    server.DisconnectClients();
    ASSERT_TRUE(server.WaitFor(Kind::kHello, kDeadline));
    EXPECT_EQ(LinesWith("the pipe connection is lost"), 2);
    server.DisconnectClients();
    ASSERT_TRUE(server.WaitFor(Kind::kHello, kDeadline));
    EXPECT_EQ(LinesWith("the pipe connection is lost"), 2) << "this one was short";
}

TEST_F(ClientFaultTest, LastMessageOfAnEndingServerArrives) {
    Inbox inbox;
    IPCMessageClient client(1, true, false, PipeName());
    client.RegisterMessageCallback(harness::Protocol::kNotificationCode, inbox.Callback());
    PipeServer server;
    ASSERT_TRUE(server.Start(PipeName()));
    ASSERT_TRUE(server.WaitFor(Kind::kHello, kDeadline));
    EXPECT_EQ(server.Send(Message(harness::Protocol::kNotificationCode)), 1);
    server.Stop();
    EXPECT_TRUE(inbox.WaitFor(1));
}

// The client learns of the server's end by a write that fails, before it has read everything.
TEST_F(ClientFaultTest, LastMessageArrivesThoughWritingFails) {
    Signal entered;
    Signal release;
    Inbox inbox;
    auto server = std::make_unique<RawPipe>(PipeName());
    IPCMessageClient client(1, true, false, PipeName());
    client.RegisterMessageCallback(5, [&](TagIPCMessageItem&) {
        entered.Set();
        EXPECT_TRUE(release.Wait());
    });
    client.RegisterMessageCallback(6, inbox.Callback());
    ASSERT_TRUE(server->Accept());
    EXPECT_EQ(server->Read(16).size(), 16u);
    ASSERT_TRUE(server->Write(*PipeFrame::EncodeMessage(Message(5))));
    ASSERT_TRUE(entered.Wait());
    const Bytes payload(40000);  // more than one read takes
    TagIPCMessageItem last = Message(6);
    last.slot[6] = static_cast<std::int32_t>(payload.size());
    last.data = payload.data();
    ASSERT_TRUE(server->Write(*PipeFrame::EncodeMessage(last)));
    server.reset();
    EXPECT_TRUE(client.PostIPCMessage(Ping())) << "the client does not know yet";
    release.Set();
    EXPECT_TRUE(inbox.WaitFor(1));
}

TEST_F(ClientFaultTest, AllInstancesBusy) {
    RawPipe server(PipeName(), 1);
    IPCMessageClient first(1, true, false, PipeName());
    ASSERT_TRUE(server.Accept());
    EXPECT_EQ(server.Read(16).size(), 16u);
    IPCMessageClient second(2, true, false, PipeName());
    EXPECT_FALSE(second.PostIPCMessage(Ping()));
    EXPECT_EQ(LinesWith("IPCMessageClient"), 0) << "a busy server is no failure";
}

TEST_F(ClientFaultTest, BusyServerIsReachedWhenItIsFree) {
    RawPipe server(PipeName(), 1);
    auto first = std::make_unique<IPCMessageClient>(1, true, false, PipeName());
    ASSERT_TRUE(server.Accept());
    EXPECT_EQ(server.Read(16).size(), 16u);
    IPCMessageClient second(2, true, false, PipeName());
    first.reset();
    ASSERT_TRUE(server.WaitForEnd());
    server.Disconnect();
    ASSERT_TRUE(server.Accept());
    const Bytes hello = server.Read(16);
    ASSERT_EQ(hello.size(), 16u);
    EXPECT_EQ(hello[12], 2);
}

TEST_F(ClientFaultTest, ServerDiesWithinAMessage) {
    const Bytes whole = *PipeFrame::EncodeMessage(Message(5));
    Inbox inbox;
    auto server = std::make_unique<RawPipe>(PipeName());
    IPCMessageClient client(1, true, false, PipeName());
    client.RegisterMessageCallback(5, inbox.Callback());
    ASSERT_TRUE(server->Accept());
    EXPECT_EQ(server->Read(16), PipeFrame::EncodeHello(1));
    ASSERT_TRUE(server->Write(Bytes(whole.begin(), whole.begin() + 30)));
    server.reset();
    ASSERT_TRUE(WaitForLine("the pipe connection is lost"));

    server = std::make_unique<RawPipe>(PipeName());
    ASSERT_TRUE(server->Accept());
    EXPECT_EQ(server->Read(16), PipeFrame::EncodeHello(1));
    ASSERT_TRUE(server->Write(whole)) << "the half of before is forgotten";
    EXPECT_TRUE(inbox.WaitFor(1));
    EXPECT_EQ(inbox.Messages().size(), 1u);
}

TEST_F(ClientFaultTest, ServerDiesWhileItReadsAMessage) {
    const Bytes payload(PipeFrame::kMaxPayload, 1);
    TagIPCMessageItem item = Message(5);
    item.slot[6] = static_cast<std::int32_t>(payload.size());
    item.data = payload.data();
    auto server = std::make_unique<RawPipe>(PipeName());
    IPCMessageClient client(1, true, false, PipeName());
    ASSERT_TRUE(server->Accept());
    ASSERT_TRUE(client.PostIPCMessage(item));
    EXPECT_EQ(server->Read(200000).size(), 200000u);
    server.reset();
    ASSERT_TRUE(WaitForLine("the pipe connection is lost"));
    PipeServer next;
    ASSERT_TRUE(next.Start(PipeName()));
    ASSERT_TRUE(next.WaitFor(Kind::kHello, kDeadline));
    EXPECT_TRUE(client.PostIPCMessage(Ping()));
    const auto message = next.WaitFor(Kind::kMessage, kDeadline);
    ASSERT_TRUE(message);
    EXPECT_EQ(message->frame.slot[2], harness::Protocol::kSettingsChangedCode);
}

TEST_F(ClientFaultTest, ServerThatNeverReads) {
    Expect("the pipe server does not read");
    PipeServer server;
    ASSERT_TRUE(server.Start(PipeName(), {.neverRead = true}));
    IPCMessageClient client(1, true, false, PipeName());
    ASSERT_TRUE(server.WaitFor(Kind::kConnected, kDeadline));
    int refused = 0;
    for (int i = 0; i < 10000; ++i) {
        refused += client.PostIPCMessage(Ping()) ? 0 : 1;
    }
    // 64 KiB in the pipe and the queue's limit are far less than 10,000.
    EXPECT_GT(refused, 5000);
    EXPECT_TRUE(WaitForLine("the pipe server does not read")) << "the connection is dropped";
}

TEST_F(ClientFaultTest, NonsenseFromTheServer) {
    Expect("a frame from the pipe server is refused");
    {
        PipeServer liar;
        ASSERT_TRUE(liar.Start(PipeName(), {.garbage = true}));
        IPCMessageClient client(1, true, false, PipeName());
        ASSERT_TRUE(liar.WaitFor(Kind::kDisconnected, kDeadline)) << "the client closes the connection";
        ASSERT_TRUE(liar.WaitFor(Kind::kDisconnected, kDeadline)) << "it tries again, later";
        liar.Stop();

        PipeServer server;
        ASSERT_TRUE(server.Start(PipeName()));
        ASSERT_TRUE(server.WaitFor(Kind::kHello, kDeadline)) << "it finds the better server";
        EXPECT_TRUE(client.PostIPCMessage(Ping()));
        EXPECT_TRUE(server.WaitFor(Kind::kMessage, kDeadline));
    }
    EXPECT_EQ(LinesWith("a frame from the pipe server is refused"), 1) << "told once";
}

TEST_F(ClientFaultTest, LyingLengths) {
    Expect("is refused: bad length");
    Expect("is refused: bad text length");
    Expect("is refused: bad payload length");
    const auto with = [](std::initializer_list<std::uint8_t> more) {
        const std::string start("QXPF\1\0\2\0", 8);
        Bytes bytes(start.begin(), start.end());
        for (const std::uint8_t byte : more) {
            bytes.push_back(byte);
        }
        return bytes;
    };
    EXPECT_TRUE(ClosesAfter(with({0xFF, 0xFF, 0xFF, 0x7F})));
    EXPECT_TRUE(ClosesAfter(with({0xFF, 0xFF, 0xFF, 0xFF})));
    EXPECT_TRUE(ClosesAfter(with({0, 0, 0, 0})));
    EXPECT_EQ(LinesWith("is refused: bad length"), 3);
    EXPECT_TRUE(ClosesAfter(with({54, 0, 0, 0, 0xFF, 0xFF, 0xFF, 0xFF})));
    EXPECT_EQ(LinesWith("is refused: bad text length"), 1);
    Bytes lying = *PipeFrame::EncodeMessage(Ping());
    lying[43] = 0x80;
    EXPECT_TRUE(ClosesAfter(lying));
    EXPECT_EQ(LinesWith("is refused: bad payload length"), 1);
}

TEST_F(ClientFaultTest, HelloFromTheServerIsRefused) {
    Expect("a hello from the server");
    EXPECT_TRUE(ClosesAfter(PipeFrame::EncodeHello(3)));
}

TEST_F(ClientFaultTest, HalfAFrameThenSilence) {
    Expect("left a frame unfinished");
    PipeServer server;
    ASSERT_TRUE(server.Start(PipeName(), {.halfFrame = true}));
    IPCMessageClient client(1, true, false, PipeName());
    ASSERT_TRUE(server.WaitFor(Kind::kHello, kDeadline));
    EXPECT_TRUE(client.PostIPCMessage(Ping())) << "until then the connection serves";
    EXPECT_TRUE(server.WaitFor(Kind::kMessage, kDeadline));
    EXPECT_TRUE(server.WaitFor(Kind::kDisconnected, kDeadline));
}

TEST_F(ClientFaultTest, FramesByteByByte) {
    Inbox inbox;
    RawPipe server(PipeName());
    IPCMessageClient client(1, true, false, PipeName());
    client.RegisterMessageCallback(5, inbox.Callback());
    ASSERT_TRUE(server.Accept());
    const Bytes frame = *PipeFrame::EncodeMessage(Message(5));
    for (int i = 0; i < 3; ++i) {
        for (const std::uint8_t byte : frame) {
            ASSERT_TRUE(server.Write({byte}));
        }
    }
    EXPECT_TRUE(inbox.WaitFor(3));
}

TEST_F(ClientFaultTest, ServerThatDropsAfterEveryMessage) {
    PipeServer server;
    ASSERT_TRUE(server.Start(PipeName(), {.dropAfter = 1}));
    IPCMessageClient client(1, true, false, PipeName());
    for (int i = 0; i < 3; ++i) {
        ASSERT_TRUE(server.WaitFor(Kind::kHello, kDeadline)) << i;
        EXPECT_TRUE(client.PostIPCMessage(Ping()));
        ASSERT_TRUE(server.WaitFor(Kind::kMessage, kDeadline)) << i;
        ASSERT_TRUE(server.WaitFor(Kind::kDisconnected, kDeadline)) << i;
    }
}

}  // namespace
