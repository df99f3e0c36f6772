#pragma once
// The guard that lets one instance per logon session show a window: the named mutex "PixoraUIMutex".
// Thread: UI thread; the mutex is owned by it, from the successful creation until the process ends.
#include <windows.h>

class PixoraMutex {
  public:
    static PixoraMutex& GetInstance();

    // True when another instance holds the guard, or the guard cannot be had; false makes this instance its owner.
    // To be asked once.
    bool IsAlreadyRunning();

    PixoraMutex(const PixoraMutex&) = delete;
    PixoraMutex& operator=(const PixoraMutex&) = delete;

  private:
    PixoraMutex() = default;
    ~PixoraMutex();

    HANDLE mutex_ = nullptr;  // null when not owned
};
