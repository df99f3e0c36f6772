// The entry of the tests of the preview.
#include "tests/support/Harness.h"

int main(int argc, char** argv) {
    return harness::RunTests(argc, argv, harness::End::kAtOnce);
}
