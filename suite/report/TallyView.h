#pragma once
// Usage events with named integer fields. They go the way that EventDataReport.h describes, one line each.
// Any thread; an event belongs to one thread until it is reported. Nothing throws.
#include <string>
#include <utility>
#include <vector>

#include "suite/common/Export.h"

class SUITE_REPORT_API TallyEvent {
  public:
    explicit TallyEvent(int id);
    // Appends a field; fields are reported in the order in which they were put.
    void PutInt(const std::string& key, int value);

  private:
    friend class TallyView;
    int id_;
    std::vector<std::pair<std::string, int>> fields_;
};

class SUITE_REPORT_API TallyView {
  public:
    static bool Report(const TallyEvent& event);
};
