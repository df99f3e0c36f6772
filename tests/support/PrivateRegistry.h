#pragma once
// A HKEY_CURRENT_USER of this process's own, empty at first, while one lives. The user's real one is as it was
// afterwards. Thread: the test's, when no other thread opens a key.
#include <windows.h>

#include <string>

namespace harness {

class PrivateRegistry {
  public:
    // Fails the test when the system refuses.
    PrivateRegistry();
    ~PrivateRegistry();
    PrivateRegistry(const PrivateRegistry&) = delete;
    PrivateRegistry& operator=(const PrivateRegistry&) = delete;

  private:
    const std::wstring path_;  // below the real one
    HKEY key_ = nullptr;
};

}  // namespace harness
