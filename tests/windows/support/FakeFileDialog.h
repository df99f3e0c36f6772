#pragma once
// The system's open-file dialog as a user who answers at once, while one lives.
//
// Why: the real one belongs to the end-to-end tests; here it matters what the program asks it for and does with each
// answer. The dialog's library is found at run time, so this stands in the way of that. Thread: the test's.
#include <windows.h>

#include <commdlg.h>

#include <functional>
#include <string>

#include "tests/support/ImportHook.h"

class FakeFileDialog {
  public:
    FakeFileDialog() { current_ = this; }
    ~FakeFileDialog() { current_ = nullptr; }
    FakeFileDialog(const FakeFileDialog&) = delete;
    FakeFileDialog& operator=(const FakeFileDialog&) = delete;

    std::wstring chosen;              // empty: cancelled
    DWORD error = 0;                  // of the dialog that chose nothing
    std::function<void()> whileOpen;  // may be empty
    OPENFILENAMEW asked = {};         // by the last call; its buffer is gone
    std::wstring filter;              // of that, with '|' for its terminators
    int shown = 0;

  private:
    static FARPROC WINAPI Find(HMODULE module, LPCSTR name) {
        // Names may be numbers.
        const std::string wanted = IS_INTRESOURCE(name) ? "" : name;
        if (wanted == "GetOpenFileNameW") {
            return reinterpret_cast<FARPROC>(reinterpret_cast<void*>(&Open));
        }
        if (wanted == "CommDlgExtendedError") {
            return reinterpret_cast<FARPROC>(reinterpret_cast<void*>(&Error));
        }
        return current_->find_.Original<decltype(&GetProcAddress)>()(module, name);
    }
    // The program keeps what it has found: these may be called when no fake lives.
    static BOOL WINAPI Open(LPOPENFILENAMEW dialog) {
        if (!current_) {
            return FALSE;
        }
        ++current_->shown;
        current_->asked = *dialog;
        current_->filter.clear();
        for (const wchar_t* part = dialog->lpstrFilter; *part; part += wcslen(part) + 1) {
            current_->filter += std::wstring(part) + L"|";
        }
        if (current_->whileOpen) {
            current_->whileOpen();
        }
        if (current_->chosen.empty() || current_->chosen.size() >= dialog->nMaxFile) {
            return FALSE;
        }
        wcscpy(dialog->lpstrFile, current_->chosen.c_str());
        return TRUE;
    }
    static DWORD WINAPI Error() { return current_ ? current_->error : 0; }

    static inline FakeFileDialog* current_ = nullptr;

    const harness::ImportHook find_{nullptr, "GetProcAddress", &Find};
};
