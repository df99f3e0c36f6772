#pragma once
// A server of the suite's message pipe that stands in for the camera service, in its own program and in tests.
//
// Why: the program's end of the pipe must be tried against a real one, well-behaved and not. The server takes several
// clients at once, records what they do as events, sends to all of them, and misbehaves when told. It does not know
// what messages mean.
// Limits: 30 clients at once; a further one finds the pipe busy.
// Threads: operations from any thread; one thread of the server's own does all reading and writing.
#include <windows.h>

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "suite/common/Handle.h"
#include "suite/ipc/PipeFrame.h"
#include "tools/service/ServerEvent.h"

class PipeServer {
  public:
    // What is wrong with this server; nothing by default.
    struct Behaviour {
        bool neverRead = false;  // accepts clients and leaves what they write in the pipe
        bool garbage = false;    // greets each client with bytes that are no frame
        bool halfFrame = false;  // greets each client with the first half of a message
        int dropAfter = 0;       // closes a client's connection after so many of its messages; 0: never
    };

    PipeServer() = default;
    ~PipeServer();
    PipeServer(const PipeServer&) = delete;
    PipeServer& operator=(const PipeServer&) = delete;

    // When it returns true a client can connect. False: the pipe cannot be made, for one because another server has
    // it; GetLastError tells. REQUIRES: not running.
    [[nodiscard]] bool Start(const std::wstring& pipeName, const Behaviour& behaviour);
    [[nodiscard]] bool Start(const std::wstring& pipeName) { return Start(pipeName, Behaviour()); }
    // Lets clients take what was sent, for a quarter of a second at most, and ends all connections.
    void Stop();
    // The same without waiting for it; Stop is still to be called.
    void RequestStop();

    // The next event, oldest first. Nothing when the time is over, or the server has stopped and all were taken.
    std::optional<ServerEvent> WaitForEvent(std::chrono::milliseconds atMost);
    // The next event of that kind; earlier ones of other kinds are dropped.
    std::optional<ServerEvent> WaitFor(ServerEvent::Kind kind, std::chrono::milliseconds atMost);
    // The next event, without a limit. Nothing when the server has stopped and all were taken.
    std::optional<ServerEvent> WaitForEvent();

    // Both send to every client that is connected, and return how many there are.
    int Send(const TagIPCMessageItem& item);
    int SendBytes(std::vector<std::uint8_t> bytes);
    void DisconnectClients();

  private:
    struct Client;
    struct Order {
        enum class Kind { kSend, kDisconnect } kind;
        std::vector<std::uint8_t> bytes;
    };
    using Clients = std::vector<std::unique_ptr<Client>>;

    std::optional<ServerEvent> TakeEvent();
    int GiveOrder(Order order);
    suite::Handle CreateInstance(bool first) const;
    void Listen();
    void StopListening();

    void Run();
    bool Running();
    void ServeOnce(Clients& clients, DWORD timeoutMs);
    void Obey(Clients& clients);
    void Accept(Clients& clients);
    bool Serve(Client& client);
    bool Read(Client& client);
    bool Understand(Client& client, PipeFrame::Frame frame);
    void Report(ServerEvent event, int connectedChange = 0);

    // Constant while running.
    std::wstring pipeName_;
    Behaviour behaviour_;
    suite::Handle wake_;    // automatic reset: there are orders, or the server is to stop
    suite::Handle single_;  // the claim to the pipe's name
    std::thread thread_;

    // The server's thread, once it runs.
    suite::Handle listening_;  // the instance that waits for the next client
    suite::Handle accepted_;   // manual reset: signalled when the next client has come
    OVERLAPPED accept_{};
    int nextClient_ = 1;

    std::mutex mutex_;
    std::condition_variable changed_;
    // Guarded by mutex_.
    bool running_ = false;  // and not asked to stop
    bool ended_ = true;     // no event comes any more
    std::deque<ServerEvent> events_;
    std::deque<Order> orders_;
    int connected_ = 0;
};
