// Messages between the client and a server that behaves.
#include <algorithm>
#include <map>
#include <stdexcept>
#include <thread>

#include "tests/windows/ipc/IpcTest.h"
#include "tests/windows/ipc/RawPipe.h"
#include "tools/service/PipeServer.h"

namespace {

using Kind = ServerEvent::Kind;
using Bytes = std::vector<std::uint8_t>;

class ClientMessageTest : public IpcTest {};

TEST_F(ClientMessageTest, BytesOnTheWire) {
    RawPipe server(PipeName());
    ASSERT_TRUE(server.Valid());
    IPCMessageClient client(harness::Protocol::kOwnClientId, true, false, PipeName());
    ASSERT_TRUE(server.Accept());
    EXPECT_EQ(server.Read(16), Bytes({'Q', 'X', 'P', 'F', 1, 0, 1, 0, 16, 0, 0, 0, 0, 0, 0xCE, 0}));

    ASSERT_TRUE(client.PostIPCMessage(Ping()));
    EXPECT_EQ(server.Read(54), Bytes({'Q',  'X',  'P',  'F',  1,    0,    2,    0,     //
                                      54,   0,    0,    0,    0,    0,    0,    0,     // lengths of frame and text
                                      0,    0,    0xCD, 0,    0xFF, 0xFF, 0xFF, 0xFF,  // slots 0 and 1
                                      0x3B, 0x27, 0x4B, 0,    0,    0,    0,    0,     // 2 and 3
                                      0xFF, 0xFF, 0xFF, 0xFF, 0,    0,    0,    0,     // 4 and 5
                                      2,    0,    0,    0,    0,    0,    0,    0,     // 6, reserved
                                      0,    0,    0,    0,    '1',  0}));              // flag, padding, payload
}

TEST_F(ClientMessageTest, EveryFieldReachesTheCallback) {
    RawPipe server(PipeName());
    Inbox inbox;
    IPCMessageClient client(1, true, false, PipeName());
    client.RegisterMessageCallback(harness::Protocol::kNotificationCode, inbox.Callback());
    ASSERT_TRUE(server.Accept());
    ASSERT_TRUE(server.Write({'Q',  'X',  'P',  'F', 1,    0,    2,    0,     //
                              57,   0,    0,    0,   2,    0,    0,    0,     // lengths of frame and text
                              1,    0,    0,    0,   0,    0,    4,    0,     // slots 0 and 1
                              0x11, 0x27, 0x02, 0,   4,    0,    0,    0x80,  // 2 and 3
                              5,    0,    0,    0,   6,    0,    0,    0,     // 4 and 5
                              3,    0,    0,    0,   0xFE, 0xFF, 0xFF, 0xFF,  // 6, reserved
                              9,    0,    0,    0,   'h',  'i',  0xA,  0xB,  0xC}));
    ASSERT_TRUE(inbox.WaitFor(1));
    const PipeFrame::Frame frame = inbox.Messages()[0].frame;
    EXPECT_THAT(frame.slot, testing::ElementsAre(1, harness::Protocol::kResetSubCode,
                                                 harness::Protocol::kNotificationCode, INT32_MIN + 4, 5, 6, 3));
    EXPECT_EQ(frame.text, "hi");
    EXPECT_EQ(frame.flag, 9);
    EXPECT_EQ(frame.reserved, -2);
    EXPECT_EQ(frame.payload, Bytes({0xA, 0xB, 0xC}));
}

TEST_F(ClientMessageTest, SaysHelloAndPings) {
    PipeServer server;
    ASSERT_TRUE(server.Start(PipeName()));
    IPCMessageClient client(harness::Protocol::kOwnClientId, true, false, PipeName());
    // The client is connected when its constructor returns.
    EXPECT_TRUE(client.PostIPCMessage(Ping()));
    const auto hello = server.WaitFor(Kind::kHello, kDeadline);
    ASSERT_TRUE(hello);
    EXPECT_EQ(hello->frame.clientId, harness::Protocol::kOwnClientId);
    const auto message = server.WaitFor(Kind::kMessage, kDeadline);
    ASSERT_TRUE(message);
    EXPECT_EQ(message->frame.slot[2], harness::Protocol::kSettingsChangedCode);
    EXPECT_EQ(message->frame.payload, Bytes({'1', 0}));
}

TEST_F(ClientMessageTest, CallbacksRunOnTheClientsOwnThread) {
    PipeServer server;
    ASSERT_TRUE(server.Start(PipeName()));
    Inbox inbox;
    IPCMessageClient client(1, true, false, PipeName());
    client.RegisterMessageCallback(10, inbox.Callback());
    client.RegisterMessageCallback(11, inbox.Callback());
    ASSERT_TRUE(server.WaitFor(Kind::kHello, kDeadline));
    for (int i = 0; i < 50; ++i) {
        ASSERT_EQ(server.Send(Message(i % 3 + 9)), 1);
    }
    server.Send(Message(11));
    ASSERT_TRUE(inbox.WaitFor(34));
    const auto messages = inbox.Messages();
    EXPECT_EQ(messages.size(), 34u) << "code 9 has no callback";
    for (const auto& message : messages) {
        EXPECT_EQ(message.thread, messages[0].thread);
        EXPECT_NE(message.thread, GetCurrentThreadId());
        EXPECT_NE(message.frame.slot[2], 9);
    }
}

TEST_F(ClientMessageTest, LargestPayloadBothWays) {
    PipeServer server;
    ASSERT_TRUE(server.Start(PipeName()));
    Inbox inbox;
    IPCMessageClient client(1, true, false, PipeName());
    client.RegisterMessageCallback(5, inbox.Callback());
    ASSERT_TRUE(server.WaitFor(Kind::kHello, kDeadline));
    Bytes payload(PipeFrame::kMaxPayload);
    for (std::size_t i = 0; i < payload.size(); ++i) {
        payload[i] = static_cast<std::uint8_t>(i * 31 >> 3);
    }
    TagIPCMessageItem item = Message(5);
    item.text.assign(PipeFrame::kMaxText, 't');
    item.slot[6] = static_cast<std::int32_t>(payload.size());
    item.data = payload.data();
    ASSERT_TRUE(client.PostIPCMessage(item));
    const auto arrived = server.WaitFor(Kind::kMessage, kDeadline);
    ASSERT_TRUE(arrived);
    EXPECT_TRUE(arrived->frame.payload == payload);
    ASSERT_EQ(server.Send(item), 1);
    ASSERT_TRUE(inbox.WaitFor(1));
    EXPECT_TRUE(inbox.Messages()[0].frame.payload == payload);
    EXPECT_EQ(inbox.Messages()[0].frame.text, item.text);
}

TEST_F(ClientMessageTest, ItemsThatCannotTravelAreRefused) {
    PipeServer server;
    ASSERT_TRUE(server.Start(PipeName()));
    IPCMessageClient client(1, true, false, PipeName());
    const Bytes payload(PipeFrame::kMaxPayload + 1);
    TagIPCMessageItem item = Message(5);
    item.data = payload.data();
    item.slot[6] = static_cast<std::int32_t>(payload.size());
    EXPECT_FALSE(client.PostIPCMessage(item));
    item.slot[6] = -1;
    EXPECT_FALSE(client.PostIPCMessage(item));
    EXPECT_TRUE(client.PostIPCMessage(Message(6)));
    const auto message = server.WaitFor(Kind::kMessage, kDeadline);
    ASSERT_TRUE(message);
    EXPECT_EQ(message->frame.slot[2], 6);
}

TEST_F(ClientMessageTest, PostingFromACallback) {
    PipeServer server;
    ASSERT_TRUE(server.Start(PipeName()));
    IPCMessageClient client(1, true, false, PipeName());
    client.RegisterMessageCallback(5, [&client](TagIPCMessageItem& item) {
        item.slot[2] = 6;
        EXPECT_TRUE(client.PostIPCMessage(item));
    });
    ASSERT_TRUE(server.WaitFor(Kind::kHello, kDeadline));
    server.Send(Message(5));
    const auto answer = server.WaitFor(Kind::kMessage, kDeadline);
    ASSERT_TRUE(answer);
    EXPECT_EQ(answer->frame.slot[2], 6);
}

TEST_F(ClientMessageTest, ThreadsThatPostAtOnce) {
    constexpr int kThreads = 4;
    constexpr int kEach = 200;  // all together fewer than the queue takes
    PipeServer server;
    ASSERT_TRUE(server.Start(PipeName()));
    IPCMessageClient client(1, true, false, PipeName());
    std::vector<std::thread> threads;
    threads.reserve(kThreads);
    for (int thread = 0; thread < kThreads; ++thread) {
        threads.emplace_back([&client, thread] {
            for (int i = 0; i < kEach; ++i) {
                TagIPCMessageItem item = Message(thread);
                item.slot[3] = i;
                EXPECT_TRUE(client.PostIPCMessage(item));
            }
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    std::map<int, int> next;
    for (int i = 0; i < kThreads * kEach; ++i) {
        const auto message = server.WaitFor(Kind::kMessage, kDeadline);
        ASSERT_TRUE(message) << i;
        EXPECT_EQ(message->frame.slot[3], next[message->frame.slot[2]]++);
    }
}

TEST_F(ClientMessageTest, TwoClientsAtOnce) {
    PipeServer server;
    ASSERT_TRUE(server.Start(PipeName()));
    Inbox firstInbox;
    Inbox secondInbox;
    IPCMessageClient first(100, true, false, PipeName());
    IPCMessageClient second(200, true, false, PipeName());
    first.RegisterMessageCallback(5, firstInbox.Callback());
    second.RegisterMessageCallback(5, secondInbox.Callback());
    std::map<int, int> numberOf;
    for (int i = 0; i < 2; ++i) {
        const auto hello = server.WaitFor(Kind::kHello, kDeadline);
        ASSERT_TRUE(hello);
        numberOf[hello->frame.clientId] = hello->client;
    }
    ASSERT_THAT(numberOf, testing::ElementsAre(testing::Key(100), testing::Key(200)));
    EXPECT_TRUE(second.PostIPCMessage(Message(7)));
    const auto message = server.WaitFor(Kind::kMessage, kDeadline);
    ASSERT_TRUE(message);
    EXPECT_EQ(message->client, numberOf[200]);
    EXPECT_EQ(server.Send(Message(5)), 2);
    EXPECT_TRUE(firstInbox.WaitFor(1));
    EXPECT_TRUE(secondInbox.WaitFor(1));
}

TEST_F(ClientMessageTest, ExceptionInACallbackEndsThere) {
    Expect("a message callback threw");
    PipeServer server;
    ASSERT_TRUE(server.Start(PipeName()));
    Inbox inbox;
    IPCMessageClient client(1, true, false, PipeName());
    client.RegisterMessageCallback(5, [](TagIPCMessageItem&) { throw std::runtime_error("on purpose"); });
    client.RegisterMessageCallback(6, [](TagIPCMessageItem&) { throw 7; });
    client.RegisterMessageCallback(8, inbox.Callback());
    ASSERT_TRUE(server.WaitFor(Kind::kHello, kDeadline));
    for (const std::int32_t code : {5, 6, 8}) {
        server.Send(Message(code));
    }
    ASSERT_TRUE(inbox.WaitFor(1));
    EXPECT_EQ(LinesWith("a message callback threw"), 2);
    EXPECT_EQ(LinesWith("on purpose"), 1);
    EXPECT_TRUE(client.PostIPCMessage(Ping()));
}

}  // namespace
