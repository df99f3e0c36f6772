#include <algorithm>
#include <utility>

#include "DuiLib/Layouts.h"
#include "DuiLib/Notify.h"
#include "markup/AttributeTable.h"

namespace DuiLib {

struct TabLayoutAttributes {
    static bool SelectedId(CTabLayoutUI& c, std::wstring_view value) {
        return ApplyNumber(value, 0, [&](int index) { c.wanted_ = c.SelectItem(index) ? -1 : index; });
    }

    static constexpr AttributeEntry<CTabLayoutUI> kTable[] = {{L"selectedid", SelectedId}};
};

AttributeResult CTabLayoutUI::ApplyAttribute(std::wstring_view name, std::wstring_view value) {
    const AttributeResult result = ApplyFromTable(TabLayoutAttributes::kTable, *this, name, value);
    return result == AttributeResult::kUnknown ? CContainerUI::ApplyAttribute(name, value) : result;
}

bool CTabLayoutUI::AddAt(std::unique_ptr<CControlUI> item, int index) {
    CControlUI* added = item.get();
    if (!CContainerUI::AddAt(std::move(item), index)) {
        return false;
    }
    if (selected_ >= index) {
        ++selected_;  // the same child as before
    }
    added->SetVisible(false);
    // Something is always shown: the first child until the wanted one comes.
    if (selected_ < 0) {
        selected_ = index;
        added->SetVisible(true);
    }
    if (wanted_ >= 0 && wanted_ < GetCount()) {
        SelectItem(std::exchange(wanted_, -1));
    }
    return true;
}

bool CTabLayoutUI::RemoveAt(int index) {
    if (!CContainerUI::RemoveAt(index)) {
        return false;
    }
    if (index < selected_) {
        --selected_;
    } else if (index == selected_) {
        selected_ = -1;
        SelectItem(std::min(index, GetCount() - 1));
    }
    return true;
}

bool CTabLayoutUI::SelectItem(int index) {
    CControlUI* item = GetItemAt(index);
    if (!item) {
        return false;
    }
    wanted_ = -1;
    if (index != selected_) {
        if (CControlUI* earlier = GetItemAt(selected_)) {
            earlier->SetVisible(false);
        }
        selected_ = index;
        item->SetVisible(true);
        SendNotify(NotifyType::kTabSelect, static_cast<WPARAM>(index));
    }
    return true;
}

bool CTabLayoutUI::SelectItem(const CControlUI* item) {
    return SelectItem(GetItemIndex(item));
}

bool CTabLayoutUI::SelectItemByName(const std::wstring& name) {
    for (int i = 0; i < GetCount(); ++i) {
        if (GetItemAt(i)->GetName() == name) {
            return SelectItem(i);
        }
    }
    return false;
}

}  // namespace DuiLib
