#include "suite/report/EventDataReport.h"

#include "suite/report/EventLine.h"
#include "suite/report/EventSpool.h"
#include "suite/report/SystemEventTime.h"

EventDataReport& EventDataReport::Instance() {
    static EventDataReport instance;
    return instance;
}

bool EventDataReport::GetMsg(std::string& message, const std::string& eventId, const std::string& text) {
    try {
        if (eventId.empty()) {
            return false;
        }
        message = suite::TextEventLine(suite::SystemEventTime(), eventId, text);
        return true;
    } catch (...) {
        return false;
    }
}

bool EventDataReport::SendMsg(const std::string& message) {
    try {
        suite::EventSpool* const spool = suite::IsEventLine(message) ? suite::EventSpool::Instance() : nullptr;
        return spool != nullptr && spool->Post(message);
    } catch (...) {
        return false;
    }
}
