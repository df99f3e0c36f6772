#pragma once
// One message of the suite's pipe protocol, as callers fill it and callbacks receive it.
#include <cstdint>
#include <string>

// slot[0] destination endpoint, slot[1] sub-code, slot[2] message code, slot[6] length of the payload in bytes; the
// others are passed on as they are. `data` is borrowed: in a callback it is valid until the callback returns, when
// posting until PostIPCMessage returns.
struct TagIPCMessageItem {
    std::string text;
    std::int32_t slot[7] = {-1, -1, -1, -1, -1, 0, 0};
    const void* data = nullptr;
    std::uint8_t flag = 0;
    std::int32_t reserved = 0;
};
