#pragma once
// A window of another process as a screen reader sees it: its controls, and what can be done to them.
//
// Why: the probe and the end-to-end tests look at the running program through the same door as assistive programs.
// Threads: the thread that made it, which must have COM initialised.
#include <windows.h>

#include <oleacc.h>

#include <optional>
#include <string>
#include <vector>

#include "suite/common/ComReference.h"

struct AccessibleControl {
    long id = 0;           // child id within the window
    std::wstring control;  // name in the layout; empty when it has none
    std::wstring name;     // what a screen reader says
    long role = 0;         // ROLE_SYSTEM_…
    long state = 0;        // STATE_SYSTEM_… bits
    std::wstring value;
    std::wstring action;
    RECT screenPx = {};
};

class AccessibleWindow {
  public:
    // Null client object when the window has none (yet); IsOpen tells.
    explicit AccessibleWindow(HWND window);

    bool IsOpen() const { return static_cast<bool>(client_); }
    std::vector<AccessibleControl> List() const;
    // The first control whose layout name, or else whose spoken name, is this.
    std::optional<AccessibleControl> Find(const std::wstring& name) const;
    bool Press(long id) const;
    bool SetValue(long id, const std::wstring& value) const;
    long FocusedId() const;  // 0: none

  private:
    std::vector<long> Ids() const;
    std::wstring LayoutName(long id) const;
    AccessibleControl Read(long id) const;

    suite::ComReference<IAccessible> client_;
};

std::wstring AccessibleRoleName(long role);
// "focused, pressed, checked, unavailable, invisible, …"; empty for a plain state.
std::wstring AccessibleStateNames(long state);
