#pragma once
// The callbacks of a message client by message code, and the rule that none runs after it was taken away.
//
// Why: callbacks belong to objects that are destroyed while messages still arrive.
// Threads: Register and Clear from any thread; Deliver on the client's thread only.
#include <windows.h>

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>

#include "suite/common/Handle.h"
#include "suite/ipc/TagIPCMessageItem.h"

namespace suite {

class CallbackTable {
  public:
    using Callback = std::function<void(TagIPCMessageItem&)>;

    CallbackTable();

    void Register(std::int32_t code, Callback callback);
    // Waits for a running callback to return, except when that callback itself calls.
    void Clear();
    // Calls the callback of that code, if there is one. Exceptions that it throws end here, with a log line.
    void Deliver(std::int32_t code, TagIPCMessageItem& item);

  private:
    std::shared_ptr<Callback> Begin(std::int32_t code);
    void End();

    Handle idle_;  // signalled while no callback runs
    std::mutex mutex_;
    // Guarded by mutex_; the callback is shared with the call that runs it.
    std::map<std::int32_t, std::shared_ptr<Callback>> callbacks_;
    DWORD runningThread_ = 0;
};

}  // namespace suite
