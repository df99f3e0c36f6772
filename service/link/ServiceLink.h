#pragma once
// The link to the camera service: the pipe client, the sender of data messages, and what each incoming code means.
//
// Why: the model says what changed and is told what changed elsewhere; codes and pipe are known here alone. A link that
// could not be made stays off for the rest of the run, and everything that is sent is silently skipped.
// Threads: sending on any. HandleMessage runs on the pipe client's thread, and so do the callbacks.
#include <cstdint>
#include <functional>
#include <memory>

#include "service/link/DataMessageSender.h"
#include "suite/ipc/IPCMessageClient.h"

namespace service {

class ServiceLink {
  public:
    struct Callbacks {
        std::function<void()> settingsChanged;
        std::function<void()> reset;
        std::function<void()> backgroundGone;
    };

    explicit ServiceLink(Callbacks callbacks);
    // No callback runs any more when it returns.
    ~ServiceLink();
    ServiceLink(const ServiceLink&) = delete;
    ServiceLink& operator=(const ServiceLink&) = delete;

    // To be called once; messages may arrive before it returns. Failures are logged.
    void Connect();

    // Tells the camera service that settings changed.
    void SendPing() const;
    // Tells the switch-state receiver the camera switch, 1 or 0.
    void SendSwitchState(std::int32_t value) const;

    void HandleMessage(const TagIPCMessageItem& item) const;

  private:
    const Callbacks callbacks_;
    // Set by Connect; null when they could not be made.
    std::unique_ptr<IPCMessageClient> client_;
    std::unique_ptr<DataMessageSender> sender_;
};

}  // namespace service
