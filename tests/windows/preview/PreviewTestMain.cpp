// The entry of the tests of the preview.
#include <windows.h>

#include <gmock/gmock.h>

#include <cstdio>

int main(int argc, char** argv) {
    testing::InitGoogleMock(&argc, argv);
    const int status = RUN_ALL_TESTS();
    std::fflush(nullptr);
    // Threads of the software that draws may be in the midst of something, and some systems crash then in their own
    // cleaning up. Everything of ours has been looked at, so the program ends without it.
    TerminateProcess(GetCurrentProcess(), static_cast<UINT>(status));
}
