#pragma once
// While it lives, a function of a library of the system is refused to whoever calls it, and each call is counted.
//
// Why: an import hook needs an import to hook, and a test that something is not called must notice a call that the
// program does not make yet, however it comes by the function. So the function's own first bytes are exchanged for a
// jump. Any function that answers with BOOL. x64 only. Thread: the test's, while no other
// thread is inside the function.
#include <windows.h>

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <cstring>

class RefusedCall {
  public:
    RefusedCall(const wchar_t* library, const char* function)
        : code_(reinterpret_cast<BYTE*>(GetProcAddress(GetModuleHandleW(library), function))) {
        if (!code_) {
            ADD_FAILURE() << "there is no " << function;
            return;
        }
        std::memcpy(before_.data(), code_, before_.size());
        Bytes jump = {0x48, 0xB8, 0, 0, 0, 0, 0, 0, 0, 0, 0xFF, 0xE0};  // mov rax, Refuse; jmp rax
        const auto target = &Refuse;
        std::memcpy(jump.data() + 2, &target, sizeof(target));
        Write(jump);
    }
    ~RefusedCall() {
        if (code_) {
            Write(before_);
        }
    }
    RefusedCall(const RefusedCall&) = delete;
    RefusedCall& operator=(const RefusedCall&) = delete;

    // Of all functions that were ever refused.
    static int Count() { return count_; }

  private:
    using Bytes = std::array<BYTE, 12>;

    // Arguments are the caller's to take away, however many there are.
    static BOOL WINAPI Refuse() {
        ++count_;
        SetLastError(ERROR_NONE_MAPPED);
        return FALSE;
    }
    void Write(const Bytes& bytes) {
        DWORD before = 0;
        ASSERT_TRUE(VirtualProtect(code_, bytes.size(), PAGE_EXECUTE_READWRITE, &before));
        std::memcpy(code_, bytes.data(), bytes.size());
        VirtualProtect(code_, bytes.size(), before, &before);
        FlushInstructionCache(GetCurrentProcess(), code_, bytes.size());
    }

    static inline std::atomic<int> count_ = 0;

    BYTE* const code_;
    Bytes before_{};
};
