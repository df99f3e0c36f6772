#include "DuiLib/ButtonUI.h"

#include <oleacc.h>

#include "DuiLib/ContainerUI.h"
#include "DuiLib/PaintManagerUI.h"
#include "layout/LookAttributes.h"
#include "paint/Canvas.h"

namespace DuiLib {

struct ButtonAttributes {
    static constexpr AttributeEntry<CButtonUI> kTable[] = {
        {L"normalimage", ApplyImage<CButtonUI, &CButtonUI::normalImage_>},
        {L"hotimage", ApplyImage<CButtonUI, &CButtonUI::hotImage_>},
        {L"pushedimage", ApplyImage<CButtonUI, &CButtonUI::pushedImage_>},
        {L"focusedimage", ApplyImage<CButtonUI, &CButtonUI::focusedImage_>},
        {L"disabledimage", ApplyImage<CButtonUI, &CButtonUI::disabledImage_>},
        {L"hotbkcolor", ApplyColor<CButtonUI, &CButtonUI::hotBkColor_>},
        {L"pushedbkcolor", ApplyColor<CButtonUI, &CButtonUI::pushedBkColor_>},
        {L"disabledbkcolor", ApplyColor<CButtonUI, &CButtonUI::disabledBkColor_>},
        {L"hottextcolor", ApplyColor<CButtonUI, &CButtonUI::hotTextColor_>},
        {L"pushedtextcolor", ApplyColor<CButtonUI, &CButtonUI::pushedTextColor_>},
    };
};

CButtonUI::CButtonUI() {
    SetAlign(HAlign::kCenter);
}

AttributeResult CButtonUI::ApplyAttribute(std::wstring_view name, std::wstring_view value) {
    const AttributeResult result = ApplyFromTable(ButtonAttributes::kTable, *this, name, value);
    return result == AttributeResult::kUnknown ? CLabelUI::ApplyAttribute(name, value) : result;
}

AccessibleInfo CButtonUI::GetAccessibleInfo() const {
    // A label that is pressed or filled is no static text. NOLINTNEXTLINE(bugprone-parent-virtual-call)
    AccessibleInfo info = CControlUI::GetAccessibleInfo();
    info.role = checked_ ? ROLE_SYSTEM_CHECKBUTTON : ROLE_SYSTEM_PUSHBUTTON;
    info.defaultAction = !checked_ ? L"Press" : *checked_ ? L"Uncheck" : L"Check";
    info.state |= checked_.value_or(false) ? STATE_SYSTEM_CHECKED : 0;
    info.state |= (GetState() & kStatePushed) != 0 ? STATE_SYSTEM_PRESSED : 0;
    info.state |= (GetState() & kStateHot) != 0 ? STATE_SYSTEM_HOTTRACKED : 0;
    return info;
}

void CButtonUI::SetChecked(bool checked) {
    if (checked_ != checked) {
        checked_ = checked;
        if (GetManager()) {
            GetManager()->NotifyAccessible(this, EVENT_OBJECT_STATECHANGE);
        }
    }
}

void CButtonUI::Activate() {
    if (IsEnabledInTree()) {
        SendNotify(NotifyType::kClick);
    }
}

void CButtonUI::SetEnabled(bool enabled) {
    if (!enabled) {
        const bool captured = (GetState() & kStateCaptured) != 0;
        SetState(GetState() & ~(kStateHot | kStatePushed | kStateCaptured));
        if (captured && GetManager()) {
            GetManager()->ReleaseCapture();
        }
    }
    CLabelUI::SetEnabled(enabled);
}

// --- events

void CButtonUI::DoEvent(const TEventUI& event) {
    switch (event.type) {
        case EventType::kMouseEnter:
            if (IsEnabled()) {
                FollowPointer(event.mousePx);
                SetState(GetState() | kStateHot);
                entered_ = true;
                SendNotify(NotifyType::kMouseEnter);
            }
            return;
        case EventType::kMouseLeave:
            SetState(GetState() & ~(kStateHot | ((GetState() & kStateCaptured) != 0 ? kStatePushed : 0)));
            if (entered_) {
                entered_ = false;
                SendNotify(NotifyType::kMouseLeave);
            }
            return;
        case EventType::kMouseMove:
            FollowPointer(event.mousePx);
            return;
        case EventType::kButtonDown:
            if (IsEnabled()) {
                SetState(GetState() | kStateHot | kStatePushed | kStateCaptured);
                if (GetManager()) {
                    GetManager()->SetCapture(this);
                }
                SendNotify(NotifyType::kButtonDown);
            }
            return;
        case EventType::kButtonUp:
            ButtonUp(event.mousePx);
            return;
        case EventType::kCaptureLost:
            SetState(GetState() & ~(kStatePushed | kStateCaptured));
            return;
        case EventType::kKeyDown:
        case EventType::kKeyUp:
            if (HandleKey(event)) {
                return;
            }
            break;
        case EventType::kKillFocus:
            if ((GetState() & kStateCaptured) == 0) {
                SetState(GetState() & ~kStatePushed);
            }
            break;
        default:
            break;
    }
    CLabelUI::DoEvent(event);
}

void CButtonUI::FollowPointer(Point mousePx) {
    if (!IsEnabled()) {
        return;
    }
    const bool inside = GetPos().Contains(mousePx);
    const unsigned looks = kStateHot | ((GetState() & kStateCaptured) != 0 ? kStatePushed : 0);
    SetState(inside ? GetState() | looks : GetState() & ~looks);
}

void CButtonUI::ButtonUp(Point mousePx) {
    if ((GetState() & kStateCaptured) == 0) {
        return;
    }
    const bool inside = GetPos().Contains(mousePx);
    SetState(GetState() & ~(kStatePushed | kStateCaptured));
    if (GetManager()) {
        GetManager()->ReleaseCapture();
    }
    if (inside) {
        Activate();
    }
}

bool CButtonUI::HandleKey(const TEventUI& event) {
    if (event.key != VK_SPACE && event.key != VK_RETURN) {
        return false;
    }
    const bool byMouse = (GetState() & kStateCaptured) != 0;
    if (event.repeat || byMouse || !IsEnabled()) {
        return true;
    }
    if (event.key == VK_RETURN) {
        if (event.type == EventType::kKeyDown) {
            Activate();
        }
    } else if (event.type == EventType::kKeyDown) {
        SetState(GetState() | kStatePushed);
    } else if ((GetState() & kStatePushed) != 0) {
        SetState(GetState() & ~kStatePushed);
        Activate();
    }
    return true;
}

// --- look

void CButtonUI::ChangeImage(std::wstring& image, const std::wstring& imageAttribute) {
    if (image != imageAttribute) {
        image = imageAttribute;
        Invalidate();
    }
}

void CButtonUI::SetNormalImage(const std::wstring& imageAttribute) {
    ChangeImage(normalImage_, imageAttribute);
}

void CButtonUI::SetHotImage(const std::wstring& imageAttribute) {
    ChangeImage(hotImage_, imageAttribute);
}

void CButtonUI::SetPushedImage(const std::wstring& imageAttribute) {
    ChangeImage(pushedImage_, imageAttribute);
}

void CButtonUI::SetDisabledImage(const std::wstring& imageAttribute) {
    ChangeImage(disabledImage_, imageAttribute);
}

const std::wstring& CButtonUI::CurrentImage() const {
    const unsigned state = GetState();
    const bool focused = IsFocused() && GetManager() && GetManager()->IsFocusRingShown();
    if (!IsEnabled()) {
        return disabledImage_.empty() ? normalImage_ : disabledImage_;
    }
    if ((state & kStatePushed) != 0 && !pushedImage_.empty()) {
        return pushedImage_;
    }
    if ((state & (kStateHot | kStatePushed)) != 0 && !hotImage_.empty()) {
        return hotImage_;
    }
    return focused && !focusedImage_.empty() ? focusedImage_ : normalImage_;
}

Color CButtonUI::CurrentBkColor() const {
    const Color atRest = CLabelUI::CurrentBkColor();
    if (!IsEnabled()) {
        return !disabledBkColor_.IsNone() ? disabledBkColor_ : atRest;
    }
    if ((GetState() & kStatePushed) != 0 && !pushedBkColor_.IsNone()) {
        return pushedBkColor_;
    }
    return (GetState() & (kStateHot | kStatePushed)) != 0 && !hotBkColor_.IsNone() ? hotBkColor_ : atRest;
}

Color CButtonUI::CurrentTextColor() const {
    if (IsEnabled() && (GetState() & kStatePushed) != 0 && !pushedTextColor_.IsNone()) {
        return pushedTextColor_;
    }
    const bool hot = IsEnabled() && (GetState() & (kStateHot | kStatePushed)) != 0 && !hotTextColor_.IsNone();
    return hot ? hotTextColor_ : CLabelUI::CurrentTextColor();
}

void CButtonUI::PaintImages(Canvas& canvas) {
    PaintImage(canvas, CurrentImage());
}

void CButtonUI::PaintContent(Canvas& canvas, const Rect& dirtyPx) {
    PaintImages(canvas);
    CLabelUI::PaintContent(canvas, dirtyPx);
}

}  // namespace DuiLib
