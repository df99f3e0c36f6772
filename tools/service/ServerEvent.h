#pragma once
// What a server of the message pipe saw one of its clients do.
#include <string>

#include "suite/ipc/PipeFrame.h"

struct ServerEvent {
    enum class Kind { kConnected, kHello, kMessage, kRefused, kDisconnected };

    Kind kind = Kind::kConnected;
    int client = 0;          // counted from 1 in the order of connecting
    PipeFrame::Frame frame;  // of a hello or a message
    std::wstring reason;     // of a refused frame
};
