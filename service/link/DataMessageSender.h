#pragma once
// Sends the camera switch to the suite's switch-state receiver, as the camera service's endpoint.
//
// Threads: any. Nothing throws.
#include <cstdint>

#include "suite/ipc/IPCMessageClient.h"

class DataMessageSender {
  public:
    // The client is borrowed and must outlive this object.
    DataMessageSender(std::int32_t senderId, IPCMessageClient* client) : senderId_(senderId), client_(client) {}

    // `value`: 1 switched on, 0 off. A message that is lost does no harm: the receiver reads the registry as well.
    void PostSwitchState(std::int32_t value) const;

  private:
    const std::int32_t senderId_;
    IPCMessageClient* const client_;
};
