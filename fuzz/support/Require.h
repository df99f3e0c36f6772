#pragma once
// What must hold whatever the input is: a fuzz target that finds otherwise stops here, as the sanitizers do.
#include <cstdio>
#include <cstdlib>

#define REQUIRE(condition)                                                               \
    do {                                                                                 \
        if (!(condition)) {                                                              \
            std::fprintf(stderr, "%s:%d: not so: %s\n", __FILE__, __LINE__, #condition); \
            std::abort();                                                                \
        }                                                                                \
    } while (false)
