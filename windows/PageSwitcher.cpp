#include "windows/PageSwitcher.h"

#include <utility>

void PageSwitcher::Register(const std::wstring& name, Show show) {
    pages_[name] = std::move(show);
}

bool PageSwitcher::Select(const std::wstring& name, bool evenIfShown) {
    const auto page = pages_.find(name);
    if (page == pages_.end()) {
        return false;
    }
    if (name == current_ && !evenIfShown) {
        return true;
    }
    current_ = name;
    page->second(name);
    return true;
}
