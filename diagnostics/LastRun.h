#pragma once
// What the log tells of the last run of the settings window that support asks for: how often it lost its graphics
// device. The log does not say which process wrote a line, so a run is what follows the line that each start writes; in
// a log whose beginning has been taken away, all of it. Pure logic, any thread.
#include <string>

namespace diagnostics {

class LastRun {
  public:
    // The log's lines, oldest first.
    void Add(const std::string& line);
    // One line of the report.
    std::string Text() const;

  private:
    std::string since_;  // date and time of its first line; empty when there is none
    int lost_ = 0;
    int back_ = 0;
};

}  // namespace diagnostics
