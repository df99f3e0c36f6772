#pragma once
// Switches between pages by name: each page's name has a callback that shows it. Thread: UI thread.
#include <functional>
#include <map>
#include <string>

class PageSwitcher {
  public:
    using Show = std::function<void(const std::wstring& name)>;

    // Replaces the callback of that name.
    void Register(const std::wstring& name, Show show);
    // Shows the page; the one that is shown already only with `evenIfShown`. False for an unknown name.
    bool Select(const std::wstring& name, bool evenIfShown);
    const std::wstring& Current() const { return current_; }

  private:
    std::map<std::wstring, Show> pages_;
    std::wstring current_;
};
