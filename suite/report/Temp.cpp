#include "suite/report/EventDataReport.h"
#include "suite/report/TallyView.h"
EventDataReport& EventDataReport::Instance() { static EventDataReport r; return r; }
bool EventDataReport::GetMsg(std::string& m, const std::string& a, const std::string& b) { m = a + b; return true; }
bool EventDataReport::SendMsg(const std::string&) { return true; }
TallyEvent::TallyEvent(int id) : id_(id) {}
void TallyEvent::PutInt(const std::string& k, int v) { fields_.emplace_back(k, v); }
bool TallyView::Report(const TallyEvent& e) { return e.id_ != 0; }
