#pragma once
// While it lives, the windows of a program that has just started come to the front, though the person pressed a key in
// another window last: without it they would only flash on the taskbar, and the tests' clicks would go elsewhere. The
// system forgets the setting when the user signs out. Thread: any.
#include <windows.h>

namespace proof {

class ForegroundRight {
  public:
    ForegroundRight() {
        isKnown_ = SystemParametersInfoW(SPI_GETFOREGROUNDLOCKTIMEOUT, 0, &before_, 0) != FALSE;
        Set(0);
    }
    ~ForegroundRight() {
        if (isKnown_) {
            Set(before_);
        }
    }
    ForegroundRight(const ForegroundRight&) = delete;
    ForegroundRight& operator=(const ForegroundRight&) = delete;

  private:
    // This call takes the number itself in the place of a pointer.
    static void Set(DWORD milliseconds) {
        SystemParametersInfoW(SPI_SETFOREGROUNDLOCKTIMEOUT, 0, reinterpret_cast<void*>(ULONG_PTR{milliseconds}), 0);
    }

    DWORD before_ = 0;
    bool isKnown_ = false;
};

}  // namespace proof
