#pragma once
// The hint of a custom background's delete button: a popup of its own beside ToolTipWnd, so that both can be seen.
// Thread: UI thread.
#include "windows/ToolTipWnd.h"

class DelButtonToolTip : public ToolTipWnd {
  public:
    static DelButtonToolTip& GetInstance(DuiLib::CPaintManagerUI* paintManager);

  private:
    DelButtonToolTip();
};
