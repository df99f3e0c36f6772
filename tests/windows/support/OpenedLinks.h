#pragma once
// While it lives, web links that this process opens reach a recorder in place of the user's browser.
//
// Why: the way through the shell is real, but for the table that names the browser. The process sees nothing else of
// that table meanwhile, so let it live for the moment in which a link is opened only: no image can be decoded, no other
// COM object be made. Thread: the test's.
#include <windows.h>

#include <string>
#include <vector>

class OpenedLinks {
  public:
    // Elsewhere the system asks its own table, which names the user's browser.
    static constexpr char kWhy[] = "links would reach the user's browser";

    OpenedLinks();
    ~OpenedLinks();
    OpenedLinks(const OpenedLinks&) = delete;
    OpenedLinks& operator=(const OpenedLinks&) = delete;

    // The addresses, oldest first, as soon as there are that many; no message runs. Fewer when the deadline passes.
    std::vector<std::string> WaitFor(std::size_t count) const;

  private:
    std::vector<std::string> All() const;

    std::wstring file_;
    HKEY classes_ = nullptr;
};
