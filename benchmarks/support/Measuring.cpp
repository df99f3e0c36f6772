#include "benchmarks/support/Measuring.h"

#include <cstdio>
#include <exception>

namespace benchmark {

int Run(const std::function<void()>& measure) {
    try {
        measure();
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
    return 0;
}

}  // namespace benchmark
