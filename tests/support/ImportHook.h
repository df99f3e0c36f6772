#pragma once
// Puts a test's function in the place of one that a module imports, while it lives.
//
// Why: some of what the program does shows in no state that a test could look at: that it waits between two calls,
// which of two writes comes first, that it asks the system for notifications. What stands in the module's import table
// is called in its place, so the program needs no seam for it. Calls within one module are not seen.
// Thread: made and destroyed while no other thread is inside the function; the hook itself runs on whatever thread
// calls.
#include <windows.h>

#include <string>

namespace harness {

class ImportHook {
  public:
    // `module`: null is the test program with everything that is linked into it, else a DLL's handle. `function`: the
    // imported name; for C++ a part of it that only this one has, as "IPCMessageClient14PostIPCMessage". Fails the test
    // when the module imports no such function, or several.
    ImportHook(HMODULE module, const std::string& function, void* replacement);
    template <typename Result, typename... Args>
    ImportHook(HMODULE module, const std::string& function, Result (*replacement)(Args...))
        : ImportHook(module, function, reinterpret_cast<void*>(replacement)) {}
    ~ImportHook();
    ImportHook(const ImportHook&) = delete;
    ImportHook& operator=(const ImportHook&) = delete;

    // The function that the module has imported.
    template <typename Function>
    Function Original() const {
        return reinterpret_cast<Function>(original_);
    }

  private:
    void Write(void* function) const;

    void** slot_ = nullptr;
    void* original_ = nullptr;
};

}  // namespace harness
