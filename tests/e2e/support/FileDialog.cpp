#include "tests/e2e/support/FileDialog.h"

#include <array>
#include <vector>

#include "tests/e2e/support/Machine.h"
#include "tests/support/TopLevelWindows.h"

namespace e2e {

namespace {

constexpr wchar_t kDialogClass[] = L"#32770";

void Press(WORD key) {
    std::array<INPUT, 2> inputs{};
    for (INPUT& input : inputs) {
        input.type = INPUT_KEYBOARD;
        input.ki.wVk = key;
    }
    inputs[1].ki.dwFlags = KEYEVENTF_KEYUP;
    SendInput(2, inputs.data(), sizeof(INPUT));
}

std::wstring TextOf(HWND window) {
    std::array<wchar_t, 1024> text{};
    SendMessageW(window, WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(text.data()));
    return text.data();
}

}  // namespace

bool FileDialog::WaitFor(HWND owner) {
    return WaitUntil([&] {
        for (const HWND dialog : harness::OwnedWindows(kDialogClass, owner)) {
            if (!IsWindowVisible(dialog))
                continue;
            window_ = dialog;
            GUITHREADINFO info = {};
            info.cbSize = sizeof(info);
            return GetGUIThreadInfo(GetWindowThreadProcessId(dialog, nullptr), &info) && Edit() &&
                   info.hwndFocus == Edit();
        }
        return false;
    });
}

HWND FileDialog::Edit() const {
    // Directly below the dialog, or within its combo box.
    constexpr int kCombo = 0x47C;
    constexpr int kEdit = 0x480;
    if (const HWND combo = GetDlgItem(window_, kCombo)) {
        if (const HWND edit = FindWindowExW(combo, nullptr, L"Edit", nullptr))
            return edit;
        if (const HWND inner = FindWindowExW(combo, nullptr, L"ComboBox", nullptr))
            return FindWindowExW(inner, nullptr, L"Edit", nullptr);
    }
    return GetDlgItem(window_, kEdit);
}

void FileDialog::Choose(const std::wstring& path) const {
    std::vector<INPUT> inputs;
    for (const wchar_t unit : path) {
        INPUT input = {};
        input.type = INPUT_KEYBOARD;
        input.ki.wScan = unit;
        input.ki.dwFlags = KEYEVENTF_UNICODE;
        inputs.push_back(input);
        input.ki.dwFlags |= KEYEVENTF_KEYUP;
        inputs.push_back(input);
    }
    SendInput(static_cast<UINT>(inputs.size()), inputs.data(), sizeof(INPUT));
    WaitUntil([&] { return TextOf(Edit()) == path; });
    Press(VK_RETURN);
}

void FileDialog::Cancel() const {
    Press(VK_ESCAPE);
}

bool FileDialog::WaitForEnd() const {
    return WaitUntil([this] { return !IsWindow(window_); });
}

}  // namespace e2e
