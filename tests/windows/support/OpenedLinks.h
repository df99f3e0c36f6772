#pragma once
// While it lives, web links that this process opens reach a recorder in place of the user's browser.
//
// Why: the way through the shell is real, but for the table that names the browser. Thread: the test's.
#include <windows.h>

#include <string>
#include <vector>

class OpenedLinks {
  public:
    OpenedLinks();
    ~OpenedLinks();
    OpenedLinks(const OpenedLinks&) = delete;
    OpenedLinks& operator=(const OpenedLinks&) = delete;

    // The addresses so far, oldest first.
    std::vector<std::string> All() const;
    // Runs messages until there are that many; false when they do not come in time.
    bool WaitFor(std::size_t count) const;

  private:
    std::wstring file_;
    HKEY classes_ = nullptr;
};
