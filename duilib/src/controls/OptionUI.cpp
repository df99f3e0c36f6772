#include "DuiLib/OptionUI.h"

#include <oleacc.h>

#include <algorithm>
#include <cstdlib>

#include "DuiLib/ContainerUI.h"
#include "DuiLib/PaintManagerUI.h"
#include "layout/LookAttributes.h"
#include "paint/Canvas.h"

namespace DuiLib {
namespace {

constexpr unsigned kRestMs = 200;

bool IsArrow(WORD key) {
    return key == VK_LEFT || key == VK_RIGHT || key == VK_UP || key == VK_DOWN;
}

bool IsArrowHeld() {
    return GetKeyState(VK_LEFT) < 0 || GetKeyState(VK_RIGHT) < 0 || GetKeyState(VK_UP) < 0 || GetKeyState(VK_DOWN) < 0;
}

void Fill(std::wstring& text, std::wstring_view mark, const std::wstring& value) {
    if (const std::size_t at = text.find(mark); at != std::wstring::npos) {
        text.replace(at, mark.size(), value);
    }
}

}  // namespace

struct OptionAttributes {
    static bool Group(COptionUI& c, std::wstring_view value) {
        c.SetGroup(std::wstring(value));
        return true;
    }
    static bool Selected(COptionUI& c, std::wstring_view value) {
        return ApplyParsed(ParseBool(value), [&](bool selected) { c.SetSelected(selected); });
    }

    static bool Action(COptionUI& c, std::wstring_view value) {
        return ApplyParsed(ParseBool(value), [&](bool action) { c.action_ = action; });
    }

    static constexpr AttributeEntry<COptionUI> kTable[] = {
        {L"group", Group},
        {L"selected", Selected},
        {L"action", Action},
        {L"selectedimage", ApplyImage<COptionUI, &COptionUI::selectedImage_>},
        {L"selectedhotimage", ApplyImage<COptionUI, &COptionUI::selectedHotImage_>},
        {L"foreimage", ApplyImage<COptionUI, &COptionUI::foreImage_>},
        {L"selectedbkcolor", ApplyColor<COptionUI, &COptionUI::selectedBkColor_>},
        {L"selectedtextcolor", ApplyColor<COptionUI, &COptionUI::selectedTextColor_>},
    };
};

AttributeResult COptionUI::ApplyAttribute(std::wstring_view name, std::wstring_view value) {
    const AttributeResult result = ApplyFromTable(OptionAttributes::kTable, *this, name, value);
    return result == AttributeResult::kUnknown ? CButtonUI::ApplyAttribute(name, value) : result;
}

AccessibleInfo COptionUI::GetAccessibleInfo() const {
    AccessibleInfo info = CButtonUI::GetAccessibleInfo();
    if (action_) {
        return info;
    }
    info.role = group_.empty() ? ROLE_SYSTEM_CHECKBUTTON : ROLE_SYSTEM_RADIOBUTTON;
    info.state |= IsSelected() ? STATE_SYSTEM_CHECKED : 0;
    info.defaultAction = !group_.empty() ? L"Select" : IsSelected() ? L"Uncheck" : L"Check";
    return info;
}

std::wstring COptionUI::GetAccessibleDescription() const {
    const CContainerUI* around = GetParent();
    while (around && around->GetAccPosition().empty()) {
        around = around->GetParent();
    }
    if (!around || group_.empty()) {
        return CButtonUI::GetAccessibleDescription();
    }
    std::vector<COptionUI*> members = GroupMembers();
    std::erase_if(members, [](const COptionUI* m) { return !m->IsShown(); });
    const auto place = std::find(members.begin(), members.end(), this) - members.begin() + 1;
    std::wstring text = around->GetAccPosition();
    Fill(text, L"{group}", around->GetAccessibleInfo().name);
    Fill(text, L"{n}", std::to_wstring(place));
    Fill(text, L"{count}", std::to_wstring(members.size()));
    return text;
}

std::vector<COptionUI*> COptionUI::GroupMembers() const {
    std::vector<COptionUI*> members;
    CContainerUI* top = GetParent();
    while (top && top->GetParent()) {
        top = top->GetParent();
    }
    if (top && !group_.empty()) {
        top->Visit([&](CControlUI& control) {
            auto* option = dynamic_cast<COptionUI*>(&control);
            if (option && option->group_ == group_) {
                members.push_back(option);
            }
            return true;
        });
    }
    return members;
}

void COptionUI::SetSelected(bool selected) {
    if (IsSelected() == selected) {
        return;
    }
    // All states first, so that whoever is notified sees one selected option; then the notifications, each only if its
    // control is still there.
    struct Change {
        long id;
        bool selected;
    };
    std::vector<Change> changes;
    if (selected) {
        for (COptionUI* other : GroupMembers()) {
            if (other != this && other->IsSelected()) {
                other->SetState(other->GetState() & ~kStateSelected);
                changes.push_back({other->GetId(), false});
            }
        }
    }
    SetState(selected ? GetState() | kStateSelected : GetState() & ~kStateSelected);
    changes.push_back({GetId(), selected});
    CPaintManagerUI* const manager = GetManager();
    if (!manager) {
        return;
    }
    for (const Change& change : changes) {
        if (CControlUI* control = manager->FindControlById(change.id)) {
            manager->NotifyAccessible(control, EVENT_OBJECT_STATECHANGE);
            manager->SendNotify(control, NotifyType::kSelectChanged, change.selected ? 1 : 0);
        }
    }
}

void COptionUI::Activate() {
    if (!IsEnabledInTree()) {
        return;
    }
    CPaintManagerUI* const manager = GetManager();
    const long id = GetId();
    walk_.reset();
    if (!action_) {
        SetSelected(group_.empty() ? !IsSelected() : true);
    }
    if (manager && manager->FindControlById(id) == this) {
        SendNotify(NotifyType::kClick);
    }
}

// --- keyboard

bool COptionUI::IsTabStop() const {
    if (group_.empty() || !CanHaveFocus()) {
        return CanHaveFocus();
    }
    const COptionUI* first = nullptr;
    for (const COptionUI* member : GroupMembers()) {
        if (!member->CanHaveFocus()) {
            continue;
        }
        if (member->IsSelected()) {
            return member == this;
        }
        first = first ? first : member;
    }
    return !first || first == this;
}

COptionUI* COptionUI::NeighbourFor(WORD key) const {
    std::vector<COptionUI*> members = GroupMembers();
    std::erase_if(members, [this](const COptionUI* m) { return m != this && !m->CanHaveFocus(); });
    const auto self = std::find(members.begin(), members.end(), this);
    if (members.size() < 2 || self == members.end()) {
        return nullptr;
    }
    const bool vertical = key == VK_UP || key == VK_DOWN;
    const bool forward = vertical ? key == VK_DOWN : (key == VK_RIGHT) != IsRightToLeft();
    if (vertical) {
        // The nearest row, and in it the option that is nearest to this one's column.
        COptionUI* best = nullptr;
        const auto distance = [this](const COptionUI* m) {
            return std::pair(std::abs(m->GetPos().top - GetPos().top), std::abs(m->GetPos().left - GetPos().left));
        };
        for (COptionUI* member : members) {
            const bool beyond =
                forward ? member->GetPos().top >= GetPos().bottom : member->GetPos().bottom <= GetPos().top;
            if (beyond && (!best || distance(member) < distance(best))) {
                best = member;
            }
        }
        if (best) {
            return best;
        }
    }
    const size_t at = static_cast<size_t>(self - members.begin());
    return members[(at + (forward ? 1 : members.size() - 1)) % members.size()];
}

void COptionUI::DoEvent(const TEventUI& event) {
    if (event.type == EventType::kKillFocus && walk_) {
        // Whatever takes the focus may be in the middle of something.
        CPaintManagerUI::CallAfter(0, [this, due = std::weak_ptr(walk_)] {
            if (!due.expired()) {
                ClickNowRested();
            }
        });
    }
    if (event.type != EventType::kKeyDown || !IsArrow(event.key) || group_.empty() || !GetManager()) {
        CButtonUI::DoEvent(event);
        return;
    }
    CPaintManagerUI* const manager = GetManager();
    if (COptionUI* neighbour = NeighbourFor(event.key)) {
        const long id = neighbour->GetId();
        walk_.reset();
        manager->SetFocus(neighbour, true);
        if (!event.control && !neighbour->action_ && manager->FindControlById(id) == neighbour &&
            manager->GetFocus() == neighbour) {
            neighbour->ClickAtRest();
        }
    }
}

void COptionUI::ClickAtRest() {
    walk_ = std::make_shared<const bool>(true);
    CPaintManagerUI::CallAfter(kRestMs, [this, due = std::weak_ptr(walk_)] {
        if (due.expired()) {
            return;
        }
        if (IsArrowHeld()) {
            ClickAtRest();
        } else {
            ClickNowRested();
        }
    });
}

void COptionUI::ClickNowRested() {
    walk_.reset();
    if (GetManager() && IsShown() && !IsSelected()) {
        Activate();
    }
}

// --- look

void COptionUI::SetSelectedImage(const std::wstring& imageAttribute) {
    ChangeImage(selectedImage_, imageAttribute);
}

const std::wstring& COptionUI::CurrentImage() const {
    if (IsSelected() && IsEnabled()) {
        const bool hot = (GetState() & (kStateHot | kStatePushed)) != 0;
        if (hot && !selectedHotImage_.empty()) {
            return selectedHotImage_;
        }
        if (!selectedImage_.empty()) {
            return selectedImage_;
        }
    }
    const std::wstring& image = CButtonUI::CurrentImage();
    const bool disabledSelected = IsSelected() && !IsEnabled() && &image == &GetNormalImage();
    return disabledSelected && !selectedImage_.empty() ? selectedImage_ : image;
}

void COptionUI::PaintImages(Canvas& canvas) {
    CButtonUI::PaintImages(canvas);
    PaintImage(canvas, foreImage_);
}

Color COptionUI::CurrentBkColor() const {
    const bool own = IsSelected() && IsEnabled() && !selectedBkColor_.IsNone();
    return own ? selectedBkColor_ : CButtonUI::CurrentBkColor();
}

Color COptionUI::CurrentTextColor() const {
    const bool own = IsSelected() && IsEnabled() && !selectedTextColor_.IsNone();
    return own ? selectedTextColor_ : CButtonUI::CurrentTextColor();
}

}  // namespace DuiLib
