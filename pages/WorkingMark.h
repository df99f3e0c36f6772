#pragma once
// The gallery's add entry while a background is checked and made: from half a second on it turns, and says so to screen
// readers. Meanwhile the window is used as ever and may be closed.
//
// Layout: "custom_working", a ring of dots over the entry, "custom_working_0" and so on clockwise.
// Thread: UI thread. Lives while the work is waited for.
#include <string>

#include "service/pictures/PaintingWait.h"

class PageBase;

namespace DuiLib {
class COptionUI;
}  // namespace DuiLib

class WorkingMark {
  public:
    static constexpr int kDots = 8;

    // Both borrowed.
    WorkingMark(const PageBase& page, DuiLib::COptionUI& entry);
    ~WorkingMark();
    WorkingMark(const WorkingMark&) = delete;
    WorkingMark& operator=(const WorkingMark&) = delete;

    // The window was closed meanwhile: nothing more is to be begun.
    bool IsEnding() const { return watch_.IsEnding(); }

  private:
    void Turn();
    void Rename(const std::wstring& name, bool isSaid);
    void ShowRing(bool show);

    const PageBase& page_;
    DuiLib::COptionUI& entry_;
    const std::wstring usualName_;
    int turns_ = 0;
    pictures::WaitWatch watch_;
};
