#pragma once
// The end of every benchmark that may fail.
#include <functional>

namespace benchmark {

// The exit status: 1, and the reason on the standard error stream, when `measure` throws.
int Run(const std::function<void()>& measure);

}  // namespace benchmark
