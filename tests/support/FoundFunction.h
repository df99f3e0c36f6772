#pragma once
// Puts a test's function in the place of one that the program finds at run time, while it lives.
//
// Why: libraries of the system that not every system has are loaded when they are needed
// (suite/common/SystemLibrary.h), so no import table names their functions. Several at a time, the last made goes
// first. Thread: the test's; the function itself runs on whatever thread calls.
#include <windows.h>

#include <optional>
#include <string>
#include <utility>

#include "tests/support/ImportHook.h"

namespace harness {

class FoundFunction {
  public:
    template <typename Result, typename... Args>
    FoundFunction(std::string name, Result (*replacement)(Args...))
        : outer_(current_), name_(std::move(name)), replacement_(reinterpret_cast<void*>(replacement)) {
        current_ = this;
        if (!outer_) {
            find_.emplace(nullptr, "GetProcAddress", &Find);
        }
    }
    ~FoundFunction() {
        current_ = outer_;
        if (!outer_) {
            find_.reset();
        }
    }
    FoundFunction(const FoundFunction&) = delete;
    FoundFunction& operator=(const FoundFunction&) = delete;

  private:
    static FARPROC WINAPI Find(HMODULE module, LPCSTR name) {
        for (const FoundFunction* each = current_; each; each = each->outer_) {
            // Names may be numbers.
            if (!IS_INTRESOURCE(name) && each->name_ == name) {
                return reinterpret_cast<FARPROC>(each->replacement_);
            }
        }
        return find_->Original<decltype(&GetProcAddress)>()(module, name);
    }

    static inline FoundFunction* current_ = nullptr;
    static inline std::optional<ImportHook> find_;  // while there is one

    FoundFunction* const outer_;  // borrowed; null: the first
    const std::string name_;
    void* const replacement_;
};

}  // namespace harness
