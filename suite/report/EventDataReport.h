#pragma once
// Usage events with a short text, handed to the suite's reporting.
//
// Each event becomes one JSON line of the spool file %LOCALAPPDATA%\Velmora\Quillon\Report\events.jsonl, which the
// suite's uploader empties; the file is kept below 4 MiB. Writing happens on the library's own thread: a full disk, a
// read-only folder or a lock held by somebody else changes nothing for the caller. Any thread. Nothing throws.
#include <string>

#include "suite/common/Export.h"

class SUITE_REPORT_API EventDataReport {
  public:
    static EventDataReport& Instance();
    // Builds the message of an event id (decimal) and a text. False when the id is empty.
    bool GetMsg(std::string& message, const std::string& eventId, const std::string& text);
    // Queues a message for the spool; false when the queue is full.
    bool SendMsg(const std::string& message);
    // For the end of the Windows session, after which the process may end at any moment: waits until every event that
    // was sent is in the spool file, two seconds at most.
    static void WriteOut();

  private:
    EventDataReport() = default;
    ~EventDataReport() = default;
};
