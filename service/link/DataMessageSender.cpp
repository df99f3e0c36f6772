#include "service/link/DataMessageSender.h"

#include "service/link/IPCDataIO.h"
#include "service/link/ServiceMessages.h"

void DataMessageSender::PostSwitchState(std::int32_t value) const {
    IPCDataIO payload;
    if (ServiceMessages::WriteRecord(payload, {.senderId = senderId_, .value = value})) {
        client_->PostIPCMessage(ServiceMessages::SwitchStateMessage(payload.Data(), payload.Position()));
    }
}
