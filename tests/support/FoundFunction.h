#pragma once
// Puts a test's function in the place of one that the program finds at run time, while it lives.
//
// Why: libraries of the system that not every system has are loaded when they are needed
// (suite/common/SystemLibrary.h), so no import table names their functions. One at a time. Thread: the test's; the
// function itself runs on whatever thread calls.
#include <windows.h>

#include <string>
#include <utility>

#include "tests/support/ImportHook.h"

namespace harness {

class FoundFunction {
  public:
    template <typename Result, typename... Args>
    FoundFunction(std::string name, Result (*replacement)(Args...))
        : name_(std::move(name)), replacement_(reinterpret_cast<void*>(replacement)) {
        current_ = this;
    }
    ~FoundFunction() { current_ = nullptr; }
    FoundFunction(const FoundFunction&) = delete;
    FoundFunction& operator=(const FoundFunction&) = delete;

  private:
    static FARPROC WINAPI Find(HMODULE module, LPCSTR name) {
        // Names may be numbers.
        if (!IS_INTRESOURCE(name) && current_->name_ == name) {
            return reinterpret_cast<FARPROC>(current_->replacement_);
        }
        return current_->find_.Original<decltype(&GetProcAddress)>()(module, name);
    }

    static inline FoundFunction* current_ = nullptr;

    const std::string name_;
    void* const replacement_;
    const ImportHook find_{nullptr, "GetProcAddress", &Find};
};

}  // namespace harness
