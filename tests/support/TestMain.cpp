// The entry of every test program, native or Windows.
#ifdef _WIN32
#include "tests/support/Harness.h"

int main(int argc, char** argv) {
    return harness::RunTests(argc, argv);
}
#else
#include <gmock/gmock.h>

int main(int argc, char** argv) {
    testing::InitGoogleMock(&argc, argv);
    return RUN_ALL_TESTS();
}
#endif
