#pragma once
// The present moment for an event's line. Any thread. Nothing throws.
#include <windows.h>

#include "suite/report/EventLine.h"

namespace suite {

inline EventTime SystemEventTime() {
    SYSTEMTIME now;
    GetSystemTime(&now);
    return {now.wYear, now.wMonth, now.wDay, now.wHour, now.wMinute, now.wSecond, now.wMilliseconds};
}

}  // namespace suite
