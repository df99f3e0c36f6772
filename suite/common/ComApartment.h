#pragma once
// COM on the calling thread for the length of a scope. Begins and ends on one thread.
//
// A thread that is in an apartment of the other kind stays there; COM works in it all the same, and leaving it is left
// to whoever entered it.
#include <windows.h>

#include <objbase.h>

namespace suite {

class ComApartment {
  public:
    enum class Kind {
        kSingleThreaded,  // for the shell's objects and windows; without the old data exchange of the system's shell
        kMultiThreaded,
    };

    explicit ComApartment(Kind kind)
        : result_(CoInitializeEx(nullptr, kind == Kind::kSingleThreaded
                                              ? COINIT_APARTMENTTHREADED | COINIT_DISABLE_OLE1DDE
                                              : COINIT_MULTITHREADED)) {}
    ~ComApartment() {
        if (SUCCEEDED(result_)) {
            CoUninitialize();
        }
    }
    ComApartment(const ComApartment&) = delete;
    ComApartment& operator=(const ComApartment&) = delete;

    // RPC_E_CHANGED_MODE: the thread is in the other kind.
    HRESULT Result() const { return result_; }

  private:
    const HRESULT result_;
};

}  // namespace suite
