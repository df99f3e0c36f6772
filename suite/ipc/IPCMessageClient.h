#pragma once
// A client of the suite's message pipe: posts messages to other endpoints and calls back for those that arrive.
//
// Why: the program and the camera service exchange short messages and must never wait for each other. One thread of
// the client's own connects, writes, reads, and reconnects when a server appears; posting only queues.
// PostIPCMessage answers false at once when there is no server. A server that is dead, slow, absent or sends nonsense
// costs a log line and the connection, never a wait on the caller's thread, a crash or unbounded memory.
// Frames are described in suite/ipc/PipeFrame.h.
// Threads: operations from any thread; callbacks run on the client's own thread, one at a time, and may post.
#include <windows.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "suite/ipc/Export.h"
#include "suite/ipc/TagIPCMessageItem.h"

class SUITE_IPC_API IPCMessageClient {
  public:
    using MessageCallback = std::function<void(TagIPCMessageItem&)>;

    // `clientId`: this endpoint's identifier, sent to the server on connecting. `autoReconnect`: keep trying to reach
    // a server. `exclusive`: kept for compatibility, has no effect. Starts the client's thread; never waits for a
    // server.
    IPCMessageClient(std::int32_t clientId, bool autoReconnect, bool exclusive, const std::wstring& pipeName);
    // Ends the connection and joins the thread. When it returns no callback runs and none will.
    // REQUIRES: not called from a callback.
    ~IPCMessageClient();
    IPCMessageClient(const IPCMessageClient&) = delete;
    IPCMessageClient& operator=(const IPCMessageClient&) = delete;

    // Replaces the callback of that message code.
    void RegisterMessageCallback(std::int32_t messageCode, MessageCallback callback);
    // When it returns, no callback runs (unless called from within one) and none will.
    void UnRegisterMessageCallbackAll();

    // Queues a copy of the message and its payload. True when a server is connected and the queue has room; false
    // at once otherwise, or when the payload is larger than PipeFrame::kMaxPayload.
    bool PostIPCMessage(const TagIPCMessageItem& item);

  private:
    class Impl;
    std::unique_ptr<Impl> impl_;
};
