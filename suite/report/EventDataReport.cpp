#include "suite/report/EventDataReport.h"

#include "suite/report/Spool.h"

EventDataReport& EventDataReport::Instance() {
    static EventDataReport* const instance = new EventDataReport;
    return *instance;
}

bool EventDataReport::GetMsg(std::string& message, const std::string& eventId, const std::string& text) {
    try {
        if (eventId.empty()) {
            return false;
        }
        message = suite::TextEventLine(suite::UtcNow(), eventId, text);
        return true;
    } catch (...) {
        return false;
    }
}

bool EventDataReport::SendMsg(const std::string& message) {
    suite::Spool* const spool = suite::Spool::Instance();
    return spool && !message.empty() && spool->Put(message);
}

void EventDataReport::WriteOut() {
    suite::Spool::WriteOut();
}
