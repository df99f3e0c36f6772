#pragma once
// A window's controls for screen readers and end-to-end tests, through IAccessible.
//
// The window's client object holds a flat list of simple elements: every shown control whose role is not 0, in layout
// order, which is also Tab order. A child's id is its control's id (CControlUI::GetId), as in the events that the
// paint manager sends; it stays the same for the control's life. The list is made anew on each call: it has at most a
// few hundred entries and no state that could be stale. get_accHelpTopic gives a control's layout name.
// Actions that a client asks for are run from a posted message, so that a modal window does not keep it waiting.
// The object survives its window and then answers CO_E_OBJNOTCONNECTED. Thread: UI thread; COM brings calls there.
#include <windows.h>

#include <oleacc.h>

#include <string>
#include <vector>

#include "suite/common/ComObject.h"

namespace DuiLib {

class CControlUI;
class CPaintManagerUI;

// Posted to the window with a control's id in lParam: run its default action.
UINT DefaultActionMessage();

class WindowAccessible final : public suite::ComObject<IAccessible, IDispatch> {
  public:
    // `manager` is borrowed until Disconnect. The caller holds the first reference.
    explicit WindowAccessible(CPaintManagerUI& manager) : manager_(&manager) {}
    void Disconnect() { manager_ = nullptr; }

    // IUnknown: beside its own interfaces a list of the children. IDispatch
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override;
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override;
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, UINT*) override {
        return E_NOTIMPL;
    }

    // IAccessible
    HRESULT STDMETHODCALLTYPE get_accParent(IDispatch** parent) override;
    HRESULT STDMETHODCALLTYPE get_accChildCount(long* count) override;
    HRESULT STDMETHODCALLTYPE get_accChild(VARIANT id, IDispatch** child) override;
    HRESULT STDMETHODCALLTYPE get_accName(VARIANT id, BSTR* name) override;
    HRESULT STDMETHODCALLTYPE get_accValue(VARIANT id, BSTR* value) override;
    HRESULT STDMETHODCALLTYPE get_accDescription(VARIANT id, BSTR* description) override;
    HRESULT STDMETHODCALLTYPE get_accRole(VARIANT id, VARIANT* role) override;
    HRESULT STDMETHODCALLTYPE get_accState(VARIANT id, VARIANT* state) override;
    HRESULT STDMETHODCALLTYPE get_accHelp(VARIANT id, BSTR* help) override;
    HRESULT STDMETHODCALLTYPE get_accHelpTopic(BSTR* file, VARIANT id, long* topic) override;
    HRESULT STDMETHODCALLTYPE get_accKeyboardShortcut(VARIANT id, BSTR* shortcut) override;
    HRESULT STDMETHODCALLTYPE get_accFocus(VARIANT* child) override;
    HRESULT STDMETHODCALLTYPE get_accSelection(VARIANT* children) override;
    HRESULT STDMETHODCALLTYPE get_accDefaultAction(VARIANT id, BSTR* action) override;
    HRESULT STDMETHODCALLTYPE accSelect(long flags, VARIANT id) override;
    HRESULT STDMETHODCALLTYPE accLocation(long* left, long* top, long* width, long* height, VARIANT id) override;
    HRESULT STDMETHODCALLTYPE accNavigate(long direction, VARIANT start, VARIANT* end) override;
    HRESULT STDMETHODCALLTYPE accHitTest(long left, long top, VARIANT* child) override;
    HRESULT STDMETHODCALLTYPE accDoDefaultAction(VARIANT id) override;
    HRESULT STDMETHODCALLTYPE put_accName(VARIANT, BSTR) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE put_accValue(VARIANT id, BSTR value) override;

  private:
    ~WindowAccessible() override = default;
    std::vector<CControlUI*> Elements() const;
    // What a control of that name is called; empty where there is none.
    std::wstring TextOf(const std::wstring& controlName) const;
    // S_OK: `control` is the element, or null for the window itself.
    HRESULT Find(const VARIANT& id, CControlUI*& control) const;
    // What `operation` answers for what Find finds; no exception leaves it.
    template <typename Operation>
    HRESULT WithElement(const VARIANT& id, const Operation& operation) const;

    CPaintManagerUI* manager_;  // null: the window is gone
};

}  // namespace DuiLib
