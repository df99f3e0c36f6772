#include "windows/DelButtonToolTip.h"

DelButtonToolTip::DelButtonToolTip() : ToolTipWnd(L"CUSTOM_DEL_TOOL_TIP_CLASS") {}

DelButtonToolTip& DelButtonToolTip::GetInstance(DuiLib::CPaintManagerUI* paintManager) {
    static DelButtonToolTip instance;
    instance.Prepare(paintManager);
    return instance;
}
