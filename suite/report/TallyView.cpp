#include "suite/report/TallyView.h"

#include "suite/report/EventDataReport.h"
#include "suite/report/EventLine.h"
#include "suite/report/SystemEventTime.h"

TallyEvent::TallyEvent(int id) : id_(id) {}

void TallyEvent::PutInt(const std::string& key, int value) {
    try {
        fields_.emplace_back(key, value);
    } catch (...) {
        // No memory: the event goes without the field.
    }
}

bool TallyView::Report(const TallyEvent& event) {
    try {
        return EventDataReport::Instance().SendMsg(
            suite::FieldEventLine(suite::SystemEventTime(), event.id_, event.fields_));
    } catch (...) {
        return false;
    }
}
