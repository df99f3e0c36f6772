#include "pages/ContainerUIEx.h"

#include "DuiLib/Notify.h"

void CContainerUIEx::DoEvent(const DuiLib::TEventUI& event) {
    if (event.type == DuiLib::EventType::kMouseEnter) {
        SendNotify(DuiLib::NotifyType::kMouseEnter);
    }
    if (event.type == DuiLib::EventType::kMouseLeave) {
        SendNotify(DuiLib::NotifyType::kMouseLeave);
        return;
    }
    CContainerUI::DoEvent(event);
}
