// The entry of the end-to-end tests, with COM for the accessibility door.
#include <windows.h>

#include <objbase.h>

#include "tests/support/Harness.h"

int main(int argc, char** argv) {
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    const int status = harness::RunTests(argc, argv);
    CoUninitialize();
    return status;
}
