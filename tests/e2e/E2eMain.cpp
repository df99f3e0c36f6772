// The entry of the end-to-end tests: as tests/support/TestMain.cpp, with COM for the accessibility door.
#include <gmock/gmock.h>
#include <windows.h>

#include <objbase.h>

int main(int argc, char** argv) {
    testing::InitGoogleMock(&argc, argv);
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    const int status = RUN_ALL_TESTS();
    CoUninitialize();
    return status;
}
