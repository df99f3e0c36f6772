#include "tools/probe/AccessibleWindow.h"

namespace {

std::wstring TakeText(BSTR text) {
    std::wstring result = text ? std::wstring(text, SysStringLen(text)) : std::wstring();
    SysFreeString(text);
    return result;
}

VARIANT ChildId(long id) {
    VARIANT child;
    VariantInit(&child);
    child.vt = VT_I4;
    child.lVal = id;
    return child;
}

}  // namespace

AccessibleWindow::AccessibleWindow(HWND window) {
    AccessibleObjectFromWindow(window, static_cast<DWORD>(OBJID_CLIENT), IID_IAccessible, client_.PutVoid());
}

AccessibleControl AccessibleWindow::Read(long id) const {
    AccessibleControl control;
    control.id = id;
    const VARIANT child = ChildId(id);
    BSTR text = nullptr;
    if (client_->get_accName(child, &text) == S_OK)
        control.name = TakeText(text);
    control.control = LayoutName(id);
    text = nullptr;
    if (client_->get_accValue(child, &text) == S_OK)
        control.value = TakeText(text);
    text = nullptr;
    if (client_->get_accDefaultAction(child, &text) == S_OK)
        control.action = TakeText(text);
    VARIANT answer;
    VariantInit(&answer);
    if (client_->get_accRole(child, &answer) == S_OK && answer.vt == VT_I4)
        control.role = answer.lVal;
    VariantInit(&answer);
    if (client_->get_accState(child, &answer) == S_OK && answer.vt == VT_I4)
        control.state = answer.lVal;
    long left = 0, top = 0, width = 0, height = 0;
    if (client_->accLocation(&left, &top, &width, &height, child) == S_OK) {
        control.screenPx = {left, top, left + width, top + height};
    }
    return control;
}

std::wstring AccessibleWindow::LayoutName(long id) const {
    BSTR text = nullptr;
    long topic = 0;
    return client_->get_accHelpTopic(&text, ChildId(id), &topic) == S_OK ? TakeText(text) : std::wstring();
}

std::vector<long> AccessibleWindow::Ids() const {
    std::vector<long> ids;
    long count = 0;
    if (!client_ || client_->get_accChildCount(&count) != S_OK || count <= 0)
        return ids;
    std::vector<VARIANT> children(static_cast<std::size_t>(count));
    long got = 0;
    if (FAILED(AccessibleChildren(client_.Get(), 0, count, children.data(), &got)))
        return ids;
    for (long i = 0; i < got; ++i) {
        VARIANT& child = children[static_cast<std::size_t>(i)];
        if (child.vt == VT_I4)
            ids.push_back(child.lVal);
        VariantClear(&child);
    }
    return ids;
}

std::vector<AccessibleControl> AccessibleWindow::List() const {
    std::vector<AccessibleControl> result;
    for (const long id : Ids())
        result.push_back(Read(id));
    return result;
}

std::optional<AccessibleControl> AccessibleWindow::Find(const std::wstring& name) const {
    // Each question is a call into the other process, so only one control is read whole.
    const std::vector<long> ids = Ids();
    for (const long id : ids) {
        if (LayoutName(id) == name)
            return Read(id);
    }
    for (const long id : ids) {
        AccessibleControl control = Read(id);
        if (control.name == name)
            return control;
    }
    return std::nullopt;
}

bool AccessibleWindow::Press(long id) const {
    return client_ && client_->accDoDefaultAction(ChildId(id)) == S_OK;
}

bool AccessibleWindow::SetValue(long id, const std::wstring& value) const {
    if (!client_)
        return false;
    BSTR text = SysAllocStringLen(value.data(), static_cast<UINT>(value.size()));
    const HRESULT result = client_->put_accValue(ChildId(id), text);
    SysFreeString(text);
    return result == S_OK;
}

long AccessibleWindow::FocusedId() const {
    VARIANT answer;
    VariantInit(&answer);
    if (!client_ || client_->get_accFocus(&answer) != S_OK)
        return 0;
    const long id = answer.vt == VT_I4 ? answer.lVal : 0;
    VariantClear(&answer);
    return id;
}

std::wstring AccessibleRoleName(long role) {
    wchar_t text[64] = {};
    const UINT length = GetRoleTextW(static_cast<DWORD>(role), text, 64);
    return length ? std::wstring(text, length) : std::to_wstring(role);
}

std::wstring AccessibleStateNames(long state) {
    std::wstring result;
    for (DWORD bit = 1; bit && bit <= STATE_SYSTEM_PROTECTED; bit <<= 1) {
        if (!(static_cast<DWORD>(state) & bit))
            continue;
        wchar_t text[64] = {};
        const UINT length = GetStateTextW(bit, text, 64);
        if (!result.empty())
            result += L", ";
        result += length ? std::wstring(text, length) : std::to_wstring(bit);
    }
    return result;
}
