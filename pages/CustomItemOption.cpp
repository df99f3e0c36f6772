#include "pages/CustomItemOption.h"

#include "DuiLib/Notify.h"
#include "DuiLib/PaintManagerUI.h"
#include "service/pictures/CustomItemNames.h"

void CCustomItemOption::DoEvent(const DuiLib::TEventUI& event) {
    DuiLib::CPaintManagerUI* const manager = GetManager();
    if (event.type == DuiLib::EventType::kKeyDown && event.key == VK_DELETE && manager) {
        if (DuiLib::CControlUI* button = manager->FindControl(GetName() + pictures::CustomItemNames::kDeleteSuffix)) {
            manager->SendNotify(button, DuiLib::NotifyType::kClick);
        }
        return;
    }
    COptionUI::DoEvent(event);
}
