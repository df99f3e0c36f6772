#include "accessibility/Accessible.h"

#include <algorithm>
#include <string>

#include "DuiLib/ContainerUI.h"
#include "DuiLib/PaintManagerUI.h"
#include "accessibility/AccessibleCalls.h"
#include "accessibility/AccessibleIds.h"
#include "suite/common/SystemLibrary.h"

namespace DuiLib {
namespace {

constinit suite::SystemLibrary oleacc(L"oleacc.dll");
constinit suite::SystemFunction<decltype(&AccessibleObjectFromWindow)> accessibleObjectFromWindow(
    oleacc, "AccessibleObjectFromWindow");

// S_FALSE for an empty text, as the interface has it.
HRESULT ToBstr(const std::wstring& text, BSTR* out) {
    if (text.empty()) {
        return S_FALSE;
    }
    *out = SysAllocStringLen(text.c_str(), static_cast<UINT>(text.size()));
    return *out ? S_OK : E_OUTOFMEMORY;
}

bool IsScrolledAway(const CControlUI& control) {
    Rect seen = control.GetPos();
    for (const CControlUI* c = control.GetParent(); c; c = c->GetParent()) {
        seen = seen.Intersect(c->GetPos());
    }
    return seen.IsEmpty();
}

long StateOf(const CControlUI& control, CPaintManagerUI& manager, long own) {
    long state = own;
    const bool enabled = control.IsEnabledInTree();
    if (!enabled) {
        state |= STATE_SYSTEM_UNAVAILABLE;
    } else if (control.CanHaveFocus()) {
        state |= STATE_SYSTEM_FOCUSABLE;
    }
    if (manager.GetFocus() == &control && ::GetFocus() == manager.GetPaintWindow()) {
        state |= STATE_SYSTEM_FOCUSED;
    }
    if (enabled && manager.GetHot() == &control) {
        state |= STATE_SYSTEM_HOTTRACKED;
    }
    if (!control.GetName().empty() && control.GetName() == manager.GetWindowSpec().defaultButton) {
        state |= STATE_SYSTEM_DEFAULT;
    }
    if ((control.GetState() & kStatePushed) != 0) {
        state |= STATE_SYSTEM_PRESSED;
    }
    if (IsScrolledAway(control)) {
        state |= STATE_SYSTEM_OFFSCREEN;
    }
    return state;
}

}  // namespace

UINT DefaultActionMessage() {
    static const UINT message = RegisterWindowMessageW(L"DuiLib.DefaultAction");
    return message;
}

HRESULT WindowAccessible::QueryInterface(REFIID iid, void** object) {
    if (iid != IID_IEnumVARIANT || !object) {
        return ComObject::QueryInterface(iid, object);
    }
    *object = nullptr;
    if (!manager_) {
        return CO_E_OBJNOTCONNECTED;
    }
    return Guarded([&] {
        std::vector<long> ids;
        for (const CControlUI* control : Elements()) {
            ids.push_back(control->GetId());
        }
        *object = static_cast<IEnumVARIANT*>(new AccessibleIds(std::move(ids), 0));
        return S_OK;
    });
}

HRESULT WindowAccessible::GetTypeInfoCount(UINT* count) {
    if (!count) {
        return E_POINTER;
    }
    *count = 0;
    return S_OK;
}

std::vector<CControlUI*> WindowAccessible::Elements() const {
    std::vector<CControlUI*> elements;
    manager_->UpdateLayout();
    if (CControlUI* const root = manager_->GetRoot()) {
        root->Visit([&](CControlUI& control) {
            if (control.IsShown() && control.GetAccessibleInfo().role != 0) {
                elements.push_back(&control);
            }
            return true;
        });
    }
    return elements;
}

HRESULT WindowAccessible::Find(const VARIANT& id, CControlUI*& control) const {
    control = nullptr;
    if (!manager_) {
        return CO_E_OBJNOTCONNECTED;
    }
    if (id.vt != VT_I4) {
        return E_INVALIDARG;
    }
    if (id.lVal == CHILDID_SELF) {
        return S_OK;
    }
    manager_->UpdateLayout();
    CControlUI* const found = manager_->FindControlById(id.lVal);
    if (!found || !found->IsShown() || found->GetAccessibleInfo().role == 0) {
        return E_INVALIDARG;
    }
    control = found;
    return S_OK;
}

std::wstring WindowAccessible::TextOf(const std::wstring& controlName) const {
    const CControlUI* const control = manager_->FindControl(controlName);
    return control ? control->GetAccessibleInfo().name : std::wstring();
}

template <typename Operation>
HRESULT WindowAccessible::WithElement(const VARIANT& id, const Operation& operation) const {
    return Guarded([&]() -> HRESULT {
        CControlUI* control = nullptr;
        const HRESULT found = Find(id, control);
        return FAILED(found) ? found : operation(control);
    });
}

HRESULT WindowAccessible::get_accParent(IDispatch** parent) {
    if (!parent) {
        return E_POINTER;
    }
    *parent = nullptr;
    if (!manager_) {
        return CO_E_OBJNOTCONNECTED;
    }
    return accessibleObjectFromWindow(manager_->GetPaintWindow(), static_cast<DWORD>(OBJID_WINDOW), IID_IDispatch,
                                      reinterpret_cast<void**>(parent));
}

HRESULT WindowAccessible::get_accChildCount(long* count) {
    if (!count) {
        return E_POINTER;
    }
    *count = 0;
    if (!manager_) {
        return CO_E_OBJNOTCONNECTED;
    }
    return Guarded([&] {
        *count = static_cast<long>(Elements().size());
        return S_OK;
    });
}

// Every child is a simple element: it has no object of its own.
HRESULT WindowAccessible::get_accChild(VARIANT id, IDispatch** child) {
    if (!child) {
        return E_POINTER;
    }
    *child = nullptr;
    return WithElement(id, [&](const CControlUI* control) {
        return control ? S_FALSE : QueryInterface(IID_IDispatch, reinterpret_cast<void**>(child));
    });
}

HRESULT WindowAccessible::get_accName(VARIANT id, BSTR* name) {
    if (!name) {
        return E_POINTER;
    }
    *name = nullptr;
    return WithElement(id, [&](CControlUI* control) {
        if (control) {
            return ToBstr(control->GetAccessibleInfo().name, name);
        }
        if (const std::wstring own = TextOf(manager_->GetWindowSpec().accTitle); !own.empty()) {
            return ToBstr(own, name);
        }
        const HWND window = manager_->GetPaintWindow();
        std::wstring title(static_cast<std::size_t>(GetWindowTextLengthW(window)) + 1, L'\0');
        title.resize(static_cast<std::size_t>(GetWindowTextW(window, title.data(), static_cast<int>(title.size()))));
        return ToBstr(title, name);
    });
}

HRESULT WindowAccessible::get_accValue(VARIANT id, BSTR* value) {
    if (!value) {
        return E_POINTER;
    }
    *value = nullptr;
    return WithElement(
        id, [&](CControlUI* control) { return control ? ToBstr(control->GetAccessibleInfo().value, value) : S_FALSE; });
}

HRESULT WindowAccessible::get_accDescription(VARIANT id, BSTR* description) {
    if (!description) {
        return E_POINTER;
    }
    *description = nullptr;
    return WithElement(id, [&](CControlUI* control) {
        if (!control) {
            return ToBstr(TextOf(manager_->GetWindowSpec().accMessage), description);
        }
        return ToBstr(control->GetAccessibleDescription(), description);
    });
}

HRESULT WindowAccessible::get_accRole(VARIANT id, VARIANT* role) {
    if (!role) {
        return E_POINTER;
    }
    VariantInit(role);
    return WithElement(id, [&](const CControlUI* control) {
        const bool box = !manager_->GetWindowSpec().accMessage.empty();
        *role = ToVariant(control ? control->GetAccessibleInfo().role : box ? ROLE_SYSTEM_DIALOG : ROLE_SYSTEM_CLIENT);
        return S_OK;
    });
}

HRESULT WindowAccessible::get_accState(VARIANT id, VARIANT* state) {
    if (!state) {
        return E_POINTER;
    }
    VariantInit(state);
    return WithElement(id, [&](CControlUI* control) {
        if (control) {
            *state = ToVariant(StateOf(*control, *manager_, control->GetAccessibleInfo().state));
            return S_OK;
        }
        const HWND window = manager_->GetPaintWindow();
        long own = STATE_SYSTEM_FOCUSABLE;
        own |= IsWindowVisible(window) ? 0 : STATE_SYSTEM_INVISIBLE;
        own |= IsWindowEnabled(window) ? 0 : STATE_SYSTEM_UNAVAILABLE;
        own |= ::GetFocus() == window && !manager_->GetFocus() ? STATE_SYSTEM_FOCUSED : 0;
        *state = ToVariant(own);
        return S_OK;
    });
}

// Readers that come by the system's newer interface are given the help, and the description by none.
HRESULT WindowAccessible::get_accHelp(VARIANT id, BSTR* help) {
    return get_accDescription(id, help);
}

HRESULT WindowAccessible::get_accHelpTopic(BSTR* file, VARIANT id, long* topic) {
    if (!file || !topic) {
        return E_POINTER;
    }
    *file = nullptr;
    *topic = 0;
    return WithElement(id, [&](CControlUI* control) {
        if (!control) {
            return S_FALSE;
        }
        *topic = control->GetId();
        return ToBstr(control->GetName(), file);
    });
}

HRESULT WindowAccessible::get_accKeyboardShortcut(VARIANT, BSTR* shortcut) {
    if (!shortcut) {
        return E_POINTER;
    }
    *shortcut = nullptr;
    return S_FALSE;
}

HRESULT WindowAccessible::get_accFocus(VARIANT* child) {
    if (!child) {
        return E_POINTER;
    }
    VariantInit(child);
    if (!manager_) {
        return CO_E_OBJNOTCONNECTED;
    }
    if (::GetFocus() != manager_->GetPaintWindow()) {
        return S_FALSE;
    }
    const CControlUI* const control = manager_->GetFocus();
    *child = ToVariant(control ? control->GetId() : CHILDID_SELF);
    return S_OK;
}

HRESULT WindowAccessible::get_accSelection(VARIANT* children) {
    if (!children) {
        return E_POINTER;
    }
    VariantInit(children);
    if (!manager_) {
        return CO_E_OBJNOTCONNECTED;
    }
    return Guarded([&] {
        std::vector<long> ids;
        for (const CControlUI* control : Elements()) {
            if ((control->GetAccessibleInfo().state & STATE_SYSTEM_SELECTED) != 0) {
                ids.push_back(control->GetId());
            }
        }
        if (ids.empty()) {
            return S_FALSE;
        }
        if (ids.size() == 1) {
            *children = ToVariant(ids.front());
        } else {
            children->punkVal = new AccessibleIds(std::move(ids), 0);
            children->vt = VT_UNKNOWN;
        }
        return S_OK;
    });
}

HRESULT WindowAccessible::get_accDefaultAction(VARIANT id, BSTR* action) {
    if (!action) {
        return E_POINTER;
    }
    *action = nullptr;
    return WithElement(id, [&](CControlUI* control) {
        return control ? ToBstr(control->GetAccessibleInfo().defaultAction, action) : S_FALSE;
    });
}

HRESULT WindowAccessible::accSelect(long flags, VARIANT id) {
    return WithElement(id, [&](CControlUI* control) {
        if (!control || (flags & ~(SELFLAG_TAKEFOCUS | SELFLAG_TAKESELECTION)) != 0) {
            return E_INVALIDARG;
        }
        if ((flags & SELFLAG_TAKESELECTION) != 0) {
            const AccessibleInfo info = control->GetAccessibleInfo();
            if ((info.state & STATE_SYSTEM_SELECTABLE) == 0) {
                return E_INVALIDARG;
            }
            if ((info.state & STATE_SYSTEM_SELECTED) == 0 && accDoDefaultAction(id) != S_OK) {
                return S_FALSE;
            }
        }
        if ((flags & SELFLAG_TAKEFOCUS) != 0) {
            if (!control->CanHaveFocus()) {
                return S_FALSE;
            }
            manager_->SetFocus(control, true);
        }
        return S_OK;
    });
}

HRESULT WindowAccessible::accLocation(long* left, long* top, long* width, long* height, VARIANT id) {
    if (!left || !top || !width || !height) {
        return E_POINTER;
    }
    *left = *top = *width = *height = 0;
    return WithElement(id, [&](CControlUI* control) {
        const HWND window = manager_->GetPaintWindow();
        RECT px{};
        if (control) {
            const Rect& pos = control->GetPos();
            px = {pos.left, pos.top, pos.right, pos.bottom};
        } else {
            GetClientRect(window, &px);
        }
        MapWindowPoints(window, HWND_DESKTOP, reinterpret_cast<POINT*>(&px), 2);
        *left = px.left;
        *top = px.top;
        *width = px.right - px.left;
        *height = px.bottom - px.top;
        return S_OK;
    });
}

HRESULT WindowAccessible::accNavigate(long direction, VARIANT start, VARIANT* end) {
    if (!end) {
        return E_POINTER;
    }
    VariantInit(end);
    return WithElement(start, [&](CControlUI* control) {
        const std::vector<CControlUI*> elements = Elements();
        const auto at = std::find(elements.begin(), elements.end(), control);
        const CControlUI* target = nullptr;
        switch (direction) {
            case NAVDIR_FIRSTCHILD:
            case NAVDIR_LASTCHILD:
                if (!control && !elements.empty()) {
                    target = direction == NAVDIR_FIRSTCHILD ? elements.front() : elements.back();
                }
                break;
            case NAVDIR_NEXT:
            case NAVDIR_DOWN:
            case NAVDIR_RIGHT:
                if (at != elements.end() && at + 1 != elements.end()) {
                    target = *(at + 1);
                }
                break;
            case NAVDIR_PREVIOUS:
            case NAVDIR_UP:
            case NAVDIR_LEFT:
                if (at != elements.end() && at != elements.begin()) {
                    target = *(at - 1);
                }
                break;
            default:
                return E_INVALIDARG;
        }
        if (!target) {
            return S_FALSE;
        }
        *end = ToVariant(target->GetId());
        return S_OK;
    });
}

HRESULT WindowAccessible::accHitTest(long left, long top, VARIANT* child) {
    if (!child) {
        return E_POINTER;
    }
    VariantInit(child);
    if (!manager_) {
        return CO_E_OBJNOTCONNECTED;
    }
    return Guarded([&] {
        POINT p{left, top};
        const HWND window = manager_->GetPaintWindow();
        ScreenToClient(window, &p);
        RECT client{};
        GetClientRect(window, &client);
        if (!PtInRect(&client, p)) {
            return S_FALSE;
        }
        // What lies under the point may be a mere decoration of an element.
        const CControlUI* control = manager_->FindControl(p);
        while (control && control->GetAccessibleInfo().role == 0) {
            control = control->GetParent();
        }
        *child = ToVariant(control ? control->GetId() : CHILDID_SELF);
        return S_OK;
    });
}

HRESULT WindowAccessible::accDoDefaultAction(VARIANT id) {
    return WithElement(id, [&](CControlUI* control) {
        if (!control || control->GetAccessibleInfo().defaultAction.empty()) {
            return DISP_E_MEMBERNOTFOUND;
        }
        if (!control->IsEnabledInTree() || !IsWindowEnabled(manager_->GetPaintWindow())) {
            return S_FALSE;
        }
        return PostMessageW(manager_->GetPaintWindow(), DefaultActionMessage(), 0, control->GetId()) ? S_OK : E_FAIL;
    });
}

HRESULT WindowAccessible::put_accValue(VARIANT id, BSTR value) {
    return WithElement(id, [&](CControlUI* control) {
        if (!control || !value || !control->IsEnabledInTree()) {
            return E_INVALIDARG;
        }
        // Under a modal window, as for the default action.
        if (!IsWindowEnabled(manager_->GetPaintWindow())) {
            return S_FALSE;
        }
        return control->SetAccessibleValue(std::wstring(value, SysStringLen(value))) ? S_OK : E_INVALIDARG;
    });
}

}  // namespace DuiLib
