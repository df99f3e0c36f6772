#include "benchmarks/support/Times.h"

#include <algorithm>
#include <cstdio>

namespace benchmark {

namespace {

void PrintRange(const char* what, const std::vector<double>& ms, double median) {
    const auto [best, worst] = std::minmax_element(ms.begin(), ms.end());
    std::printf("%s:  median %.1f ms, best %.1f ms, worst %.1f ms", what, median, *best, *worst);
}

}  // namespace

double MsSince(Clock::time_point begin) {
    return std::chrono::duration<double, std::milli>(Clock::now() - begin).count();
}

double Times::Median() const {
    std::vector<double> sorted = ms_;
    std::sort(sorted.begin(), sorted.end());
    return sorted[sorted.size() / 2];
}

double Times::Best() const {
    return *std::min_element(ms_.begin(), ms_.end());
}

void Times::Print(const char* what) const {
    PrintRange(what, ms_, Median());
    std::printf("\n");
}

void Times::Print(const char* what, double goalMs) const {
    PrintRange(what, ms_, Median());
    std::printf(" (goal %.0f ms)\n", goalMs);
}

}  // namespace benchmark
