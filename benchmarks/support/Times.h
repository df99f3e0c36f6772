#pragma once
// Durations that one run has measured, and what is told of them. One thread.
#include <chrono>
#include <vector>

namespace benchmark {

using Clock = std::chrono::steady_clock;

double MsSince(Clock::time_point begin);

class Times {
  public:
    void Add(double ms) { ms_.push_back(ms); }
    // Of at least one value; of an even number, the upper one of the two in the middle.
    double Median() const;
    double Best() const;
    // "what:  median 1.0 ms, best 0.9 ms, worst 2.0 ms", and the goal where there is one.
    void Print(const char* what) const;
    void Print(const char* what, double goalMs) const;

  private:
    std::vector<double> ms_;
};

}  // namespace benchmark
