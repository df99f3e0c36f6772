#include "DuiLib/NotifyPump.h"

#include "DuiLib/ContainerUI.h"

namespace DuiLib {
namespace {

const std::wstring* VirtualWndOf(const CControlUI* control) {
    for (; control; control = control->GetParent()) {
        if (!control->GetVirtualWnd().empty()) {
            return &control->GetVirtualWnd();
        }
    }
    return nullptr;
}

}  // namespace

bool CNotifyPump::AddVirtualWnd(const std::wstring& name, CNotifyPump* pump) {
    return !name.empty() && pump && virtualWnds_.emplace(name, pump).second;
}

bool CNotifyPump::RemoveVirtualWnd(const std::wstring& name) {
    return virtualWnds_.erase(name) != 0;
}

const CNotifyPump::NotifyMap& CNotifyPump::GetMessageMap() const {
    static const NotifyMap empty;
    return empty;
}

bool CNotifyPump::DispatchNotify(TNotifyUI& msg) {
    CNotifyPump* target = this;
    if (const std::wstring* const name = VirtualWndOf(msg.sender)) {
        const auto it = virtualWnds_.find(*name);
        if (it != virtualWnds_.end()) {
            target = it->second;
        }
    }
    for (const Entry& entry : target->GetMessageMap()) {
        if (msg.type == entry.type &&
            (!entry.controlName || (msg.sender && msg.sender->GetName() == entry.controlName))) {
            (target->*entry.handler)(msg);
            return true;
        }
    }
    return false;
}

}  // namespace DuiLib
