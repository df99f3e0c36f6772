#pragma once
// A client of the suite's message pipe: posts messages to other endpoints and calls back for those that arrive.
//
// Why: the program and the camera service exchange short messages and must never wait for each other. One thread of
// the client's own writes, reads, and reconnects when a server appears; posting only queues, or answers false at once.
// A server that is dead, slow, absent or sends nonsense costs a log line and the connection, never a wait on the
// caller's thread, a crash or unbounded memory: a frame that is not through after 2 s, either way, drops the
// connection. While no server is there the client looks for one every 2 s (a fraction of a millisecond of work), so
// one that starts late is found; a message that is posted meanwhile looks at once. An absent server is not logged.
// A server that runs for somebody else than the system, a service, an administrator or the same user is never listened
// to.
// Frames are described in suite/ipc/PipeFrame.h.
// Threads: operations from any thread; callbacks run on the client's own thread, one at a time, and may post. Nothing
// throws. While the destructor or UnRegisterMessageCallbackAll
// waits for a running callback, windows of the waiting thread still answer messages that the callback sends them.
#include <windows.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "suite/common/Export.h"
#include "suite/ipc/TagIPCMessageItem.h"

class SUITE_IPC_API IPCMessageClient {
  public:
    using MessageCallback = std::function<void(TagIPCMessageItem&)>;

    // `clientId`: this endpoint's identifier, sent to the server on connecting. `autoReconnect`: keep looking for a
    // server; without it only the constructor and posting look. `exclusive`: kept for compatibility, has no effect.
    // Looks for a server once, without waiting for one, and starts the client's thread. When the system has no thread
    // left, one line is logged and the client stays without a server.
    IPCMessageClient(std::int32_t clientId, bool autoReconnect, bool exclusive, const std::wstring& pipeName) noexcept;
    // Lets a connected server take what is queued, for a quarter of a second at most, ends the connection and joins
    // the thread. When it returns no callback runs and none will.
    // REQUIRES: not called from a callback.
    ~IPCMessageClient();
    IPCMessageClient(const IPCMessageClient&) = delete;
    IPCMessageClient& operator=(const IPCMessageClient&) = delete;

    // Sets or replaces the callback of that message code (slot 2); an empty one removes it. A message whose code has
    // no callback is dropped. The replaced callback may still be running when this returns.
    void RegisterMessageCallback(std::int32_t messageCode, MessageCallback callback) noexcept;
    // When it returns, none of the callbacks registered so far runs (unless called from within one) or will run.
    void UnRegisterMessageCallbackAll() noexcept;

    // Queues a copy of the message and its payload; a connection that is lost later may still lose it. False at once
    // when there is no server, when the queue is full (a server that does not read), or when the item cannot travel:
    // text or payload above PipeFrame::kMaxText or kMaxPayload, a length without data.
    bool PostIPCMessage(const TagIPCMessageItem& item) noexcept;

  private:
    class Impl;
    std::unique_ptr<Impl> impl_;
};
