#pragma once
// The option of one of the user's own backgrounds: as any other, and the Delete key stands for a click on the item's
// delete button, which is hidden until the pointer comes.
// Thread: UI thread.
#include "DuiLib/OptionUI.h"

class CCustomItemOption : public DuiLib::COptionUI {
  public:
    void DoEvent(const DuiLib::TEventUI& event) override;
};
