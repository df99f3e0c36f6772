#include "suite/report/TallyView.h"

#include "suite/report/Spool.h"

TallyEvent::TallyEvent(int id) : id_(id) {}

void TallyEvent::PutInt(const std::string& key, int value) {
    try {
        fields_.emplace_back(key, value);
    } catch (...) {
        // No memory: the event goes without this field.
    }
}

bool TallyView::Report(const TallyEvent& event) {
    try {
        suite::Spool* const spool = suite::Spool::Instance();
        return spool && spool->Put(suite::FieldEventLine(suite::UtcNow(), event.id_, event.fields_));
    } catch (...) {
        return false;
    }
}
