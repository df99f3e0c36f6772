#include "tests/windows/support/Script.h"

#include <gtest/gtest.h>

#include "tests/windows/support/Input.h"

namespace {

constexpr UINT kGlanceMs = 10;

Script* g_running = nullptr;  // borrowed from Run's caller

bool HasClass(HWND window, const wchar_t* className) {
    wchar_t name[128] = {};
    GetClassNameW(window, name, 128);
    return wcscmp(name, className) == 0;
}

// Windows that run a modal loop: those whose owner is disabled.
BOOL CALLBACK DestroyModal(HWND window, LPARAM) {
    const HWND owner = GetWindow(window, GW_OWNER);
    if (owner && !IsWindowEnabled(owner) && IsWindowVisible(window))
        DestroyWindow(window);
    return TRUE;
}

struct Search {
    const wchar_t* className;
    HWND found = nullptr;
};

BOOL CALLBACK FindVisible(HWND window, LPARAM search) {
    auto& wanted = *reinterpret_cast<Search*>(search);
    if (!IsWindowVisible(window) || !HasClass(window, wanted.className))
        return TRUE;
    wanted.found = window;
    return FALSE;
}

}  // namespace

HWND FindThreadWindow(const wchar_t* className) {
    Search search{className};
    EnumThreadWindows(GetCurrentThreadId(), FindVisible, reinterpret_cast<LPARAM>(&search));
    return search.found;
}

Script& Script::When(const std::string& what, Condition condition, Action action) {
    steps_.push_back({what, std::move(condition), std::move(action)});
    return *this;
}

Script& Script::Wait(const std::string& what, Condition condition) {
    return When(what, std::move(condition), [] {});
}

void Script::Run() {
    Run([] {});
}

void Script::Run(const Action& begin) {
    g_running = this;
    deadline_ = std::chrono::steady_clock::now() + Input::kPatience;
    const UINT_PTR timer = SetTimer(nullptr, 0, kGlanceMs, OnTimer);
    begin();
    while (!failed_ && next_ != steps_.size())
        Input::PumpUntil([this] { return failed_ || next_ == steps_.size(); });
    KillTimer(nullptr, timer);
    g_running = nullptr;
}

void CALLBACK Script::OnTimer(HWND, UINT, UINT_PTR, DWORD) {
    const Input::WithinLoop scope;
    if (g_running)
        g_running->Advance();
}

void Script::Advance() {
    if (failed_)
        return;
    const bool done = next_ == steps_.size();
    if (std::chrono::steady_clock::now() > deadline_) {
        failed_ = true;
        ADD_FAILURE() << "not reached: " << (done ? "the end of the loop" : steps_[next_].what);
        EnumThreadWindows(GetCurrentThreadId(), DestroyModal, 0);
        PostQuitMessage(0);
        return;
    }
    if (done || !steps_[next_].condition())
        return;
    // Done with before it acts: the action may run a modal loop, in which the next steps come.
    const Action action = steps_[next_].action;
    ++next_;
    action();
}
