// The controls of a window as screen readers and end-to-end tests see them.
#include <windows.h>

#include <oleacc.h>

#include <array>
#include <map>
#include <stdexcept>

#include "DuiLib/ContainerUI.h"
#include "DuiLib/OptionUI.h"
#include "DuiLib/SliderUI.h"
#include "DuiLib/UIMainQueue.h"
#include "TestWindow.h"
#include "tests/support/ImportHook.h"

namespace DuiLib::Test {
namespace {

constexpr char kLayout[] = R"(<Window size="400,300">
  <VerticalLayout name="root">
    <Label name="label" text="A label" height="30"/>
    <HorizontalLayout name="row" height="40">
      <Button name="ok" text="OK" tooltip="Press it" width="100"/>
      <Button name="icon" tooltip="Only a picture" width="40"/>
      <Button name="off" text="Off" enabled="false" width="40"/>
      <Button name="hidden" text="Hidden" visible="false" width="40"/>
    </HorizontalLayout>
    <HorizontalLayout height="40">
      <Option name="one" text="One" group="g" selected="true" width="80"/>
      <Option name="two" text="Two" group="g" width="80"/>
    </HorizontalLayout>
    <Slider name="slider" min="0" max="10" value="5" height="30" accname="Strength"/>
    <Text name="text" text="See &lt;a href='x:1'&gt;this&lt;/a&gt;" showhtml="true" height="30"/>
    <Control name="decoration"/>
  </VerticalLayout>
</Window>)";

VARIANT Id(long id) {
    VARIANT v{};
    v.vt = VT_I4;
    v.lVal = id;
    return v;
}

std::wstring Take(BSTR text) {
    const std::wstring taken = text != nullptr ? std::wstring(text, SysStringLen(text)) : std::wstring();
    SysFreeString(text);
    return taken;
}

class Accessibility : public testing::Test {
  protected:
    Accessibility() {
        window.ShowWindow();
        PumpPending();
        EXPECT_EQ(AccessibleObjectFromWindow(window.GetHWND(), static_cast<DWORD>(OBJID_CLIENT), IID_IAccessible,
                                             reinterpret_cast<void**>(&object)),
                  S_OK);
        if (object == nullptr) {
            throw std::runtime_error("no accessible object");
        }
        long count = 0;
        object->get_accChildCount(&count);
        std::vector<VARIANT> children(static_cast<std::size_t>(count));
        long got = 0;
        EXPECT_EQ(AccessibleChildren(object, 0, count, children.data(), &got), S_OK);
        EXPECT_EQ(got, count);
        for (const VARIANT& child : children) {
            EXPECT_EQ(child.vt, VT_I4);
            BSTR name = nullptr;
            long id = 0;
            EXPECT_EQ(object->get_accHelpTopic(&name, child, &id), S_OK);
            EXPECT_EQ(id, child.lVal);
            order.push_back(Take(name));
            ids[order.back()] = id;
        }
    }
    ~Accessibility() override { object->Release(); }

    std::wstring Name(const wchar_t* control) {
        BSTR text = nullptr;
        object->get_accName(Id(ids.at(control)), &text);
        return Take(text);
    }
    std::wstring Value(const wchar_t* control) {
        BSTR text = nullptr;
        object->get_accValue(Id(ids.at(control)), &text);
        return Take(text);
    }
    long Role(const wchar_t* control) {
        VARIANT v{};
        object->get_accRole(Id(ids.at(control)), &v);
        return v.lVal;
    }
    long State(const wchar_t* control) {
        VARIANT v{};
        object->get_accState(Id(ids.at(control)), &v);
        return v.lVal;
    }

    TestWindow window{kLayout};
    IAccessible* object = nullptr;
    std::vector<std::wstring> order;
    std::map<std::wstring, long> ids;
};

TEST_F(Accessibility, ShownControlsAreListedInLayoutOrder) {
    EXPECT_EQ(order, (std::vector<std::wstring>{L"label", L"ok", L"icon", L"off", L"one", L"two", L"slider", L"text"}));
}

TEST_F(Accessibility, NamesRolesAndValues) {
    EXPECT_EQ(Name(L"ok"), L"OK");
    EXPECT_EQ(Name(L"icon"), L"Only a picture");
    EXPECT_EQ(Name(L"slider"), L"Strength");
    EXPECT_EQ(Name(L"text"), L"See this");
    EXPECT_EQ(Role(L"ok"), ROLE_SYSTEM_PUSHBUTTON);
    EXPECT_EQ(Role(L"one"), ROLE_SYSTEM_RADIOBUTTON);
    EXPECT_EQ(Role(L"slider"), ROLE_SYSTEM_SLIDER);
    EXPECT_EQ(Value(L"slider"), L"5");
    BSTR title = nullptr;
    EXPECT_EQ(object->get_accName(Id(CHILDID_SELF), &title), S_OK);
    EXPECT_EQ(Take(title), L"Test window");
    BSTR description = nullptr;
    EXPECT_EQ(object->get_accDescription(Id(ids[L"ok"]), &description), S_OK);
    EXPECT_EQ(Take(description), L"Press it");
}

TEST_F(Accessibility, AskedForNothingItSaysSo) {
    EXPECT_EQ(object->QueryInterface(IID_IAccessible, nullptr), E_POINTER);
    IEnumVARIANT* children = nullptr;
    ASSERT_EQ(object->QueryInterface(IID_IEnumVARIANT, reinterpret_cast<void**>(&children)), S_OK);
    EXPECT_EQ(children->QueryInterface(IID_IUnknown, nullptr), E_POINTER);
    void* other = &children;
    EXPECT_EQ(children->QueryInterface(IID_IAccessible, &other), E_NOINTERFACE);
    EXPECT_EQ(other, nullptr);
    children->Release();
}

TEST_F(Accessibility, TheListIsWalkedAndSkippedThrough) {
    IEnumVARIANT* children = nullptr;
    ASSERT_EQ(object->QueryInterface(IID_IEnumVARIANT, reinterpret_cast<void**>(&children)), S_OK);
    std::array<VARIANT, 12> items{};
    ULONG fetched = 0;
    EXPECT_EQ(children->Next(3, items.data(), &fetched), S_OK);
    EXPECT_EQ(fetched, 3u);
    EXPECT_EQ(items[2].lVal, ids[L"icon"]);
    EXPECT_EQ(children->Skip(2), S_OK);
    EXPECT_EQ(children->Next(1, items.data(), nullptr), S_OK);
    EXPECT_EQ(items[0].lVal, ids[L"two"]);
    EXPECT_EQ(children->Next(12, items.data(), &fetched), S_FALSE) << "there are two more";
    EXPECT_EQ(fetched, 2u);
    EXPECT_EQ(items[1].lVal, ids[L"text"]);
    EXPECT_EQ(children->Skip(1), S_FALSE);
    EXPECT_EQ(children->Reset(), S_OK);
    EXPECT_EQ(children->Skip(8), S_OK) << "to the end";
    EXPECT_EQ(children->Next(1, items.data(), &fetched), S_FALSE);
    children->Reset();
    EXPECT_EQ(children->Skip(9), S_FALSE);
    EXPECT_EQ(children->Next(1, items.data(), &fetched), S_FALSE);
    EXPECT_EQ(fetched, 0u);
    children->Release();
}

TEST_F(Accessibility, States) {
    EXPECT_NE(State(L"off") & STATE_SYSTEM_UNAVAILABLE, 0);
    EXPECT_EQ(State(L"ok") & STATE_SYSTEM_UNAVAILABLE, 0);
    EXPECT_NE(State(L"ok") & STATE_SYSTEM_FOCUSABLE, 0);
    EXPECT_NE(State(L"one") & STATE_SYSTEM_CHECKED, 0);
    EXPECT_EQ(State(L"two") & STATE_SYSTEM_CHECKED, 0);
    window.Find(L"row").SetEnabled(false);
    EXPECT_NE(State(L"ok") & STATE_SYSTEM_UNAVAILABLE, 0);
}

TEST_F(Accessibility, FocusIsTold) {
    ASSERT_TRUE(PumpUntil([&] { return ::GetFocus() == window.GetHWND(); }));
    EXPECT_EQ(object->accSelect(SELFLAG_TAKEFOCUS, Id(ids[L"slider"])), S_OK);
    VARIANT focus{};
    EXPECT_EQ(object->get_accFocus(&focus), S_OK);
    EXPECT_EQ(focus.lVal, ids[L"slider"]);
    EXPECT_NE(State(L"slider") & STATE_SYSTEM_FOCUSED, 0);
    EXPECT_EQ(object->accSelect(SELFLAG_TAKEFOCUS, Id(ids[L"off"])), S_FALSE);
    EXPECT_EQ(object->accSelect(SELFLAG_TAKESELECTION, Id(ids[L"ok"])), E_INVALIDARG) << "a button is not selected";
}

TEST_F(Accessibility, PlaceAndHitTestAgree) {
    long left = 0;
    long top = 0;
    long width = 0;
    long height = 0;
    EXPECT_EQ(object->accLocation(&left, &top, &width, &height, Id(ids[L"ok"])), S_OK);
    EXPECT_EQ(width, 100);
    VARIANT hit{};
    EXPECT_EQ(object->accHitTest(left + width / 2, top + height / 2, &hit), S_OK);
    EXPECT_EQ(hit.lVal, ids[L"ok"]);
    EXPECT_EQ(object->accLocation(&left, &top, &width, &height, Id(CHILDID_SELF)), S_OK);
    EXPECT_EQ(width, 400);
    EXPECT_EQ(object->accHitTest(left + 200, top + 299, &hit), S_OK);
    EXPECT_EQ(hit.lVal, CHILDID_SELF);
    EXPECT_EQ(object->accHitTest(left - 10, top, &hit), S_FALSE);
}

TEST_F(Accessibility, DefaultActionPressesWithoutKeepingTheClientWaiting) {
    BSTR action = nullptr;
    EXPECT_EQ(object->get_accDefaultAction(Id(ids[L"ok"]), &action), S_OK);
    EXPECT_FALSE(Take(action).empty());
    EXPECT_EQ(object->accDoDefaultAction(Id(ids[L"ok"])), S_OK);
    EXPECT_FALSE(window.Got(L"click ok"));
    EXPECT_TRUE(PumpUntil([&] { return window.Got(L"click ok"); }));
    EXPECT_EQ(object->accDoDefaultAction(Id(ids[L"off"])), S_FALSE);
    EXPECT_EQ(object->accDoDefaultAction(Id(ids[L"label"])), DISP_E_MEMBERNOTFOUND);
    EXPECT_EQ(object->accDoDefaultAction(Id(ids[L"two"])), S_OK);
    EXPECT_TRUE(PumpUntil([&] { return window.Find<COptionUI>(L"two").IsSelected(); }));
}

TEST_F(Accessibility, ValueCanBeSet) {
    BSTR seven = SysAllocString(L"7");
    EXPECT_EQ(object->put_accValue(Id(ids[L"slider"]), seven), S_OK);
    EXPECT_EQ(window.Find<CSliderUI>(L"slider").GetValue(), 7);
    EXPECT_TRUE(window.Got(L"valuechanged slider"));
    EXPECT_EQ(object->put_accValue(Id(ids[L"ok"]), seven), E_INVALIDARG);
    SysFreeString(seven);
    EnableWindow(window.GetHWND(), FALSE);  // as under a modal window
    BSTR eight = SysAllocString(L"8");
    EXPECT_EQ(object->put_accValue(Id(ids[L"slider"]), eight), S_FALSE);
    EXPECT_EQ(window.Find<CSliderUI>(L"slider").GetValue(), 7);
    EnableWindow(window.GetHWND(), TRUE);
    SysFreeString(eight);
}

TEST_F(Accessibility, Navigation) {
    VARIANT to{};
    EXPECT_EQ(object->accNavigate(NAVDIR_FIRSTCHILD, Id(CHILDID_SELF), &to), S_OK);
    EXPECT_EQ(to.lVal, ids[L"label"]);
    EXPECT_EQ(object->accNavigate(NAVDIR_NEXT, to, &to), S_OK);
    EXPECT_EQ(to.lVal, ids[L"ok"]);
    EXPECT_EQ(object->accNavigate(NAVDIR_LASTCHILD, Id(CHILDID_SELF), &to), S_OK);
    EXPECT_EQ(to.lVal, ids[L"text"]);
    EXPECT_EQ(object->accNavigate(NAVDIR_NEXT, to, &to), S_FALSE);
}

TEST_F(Accessibility, WrongIdsAndNullPointersAreRefused) {
    BSTR text = nullptr;
    EXPECT_EQ(object->get_accName(Id(123456789), &text), E_INVALIDARG);
    EXPECT_EQ(object->get_accName(Id(window.Find(L"hidden").GetId()), &text), E_INVALIDARG);
    VARIANT none{};
    EXPECT_EQ(object->get_accName(none, &text), E_INVALIDARG);
    EXPECT_EQ(object->get_accName(Id(ids[L"ok"]), nullptr), E_POINTER);
    IDispatch* child = nullptr;
    EXPECT_EQ(object->get_accChild(Id(ids[L"ok"]), &child), S_FALSE);
}

TEST_F(Accessibility, OutlivesItsWindow) {
    const long ok = ids[L"ok"];
    DestroyWindow(window.GetHWND());
    BSTR text = nullptr;
    VARIANT v{};
    long count = 0;
    EXPECT_EQ(object->get_accName(Id(ok), &text), CO_E_OBJNOTCONNECTED);
    EXPECT_EQ(object->get_accRole(Id(CHILDID_SELF), &v), CO_E_OBJNOTCONNECTED);
    EXPECT_EQ(object->get_accChildCount(&count), CO_E_OBJNOTCONNECTED);
    EXPECT_EQ(object->get_accFocus(&v), CO_E_OBJNOTCONNECTED);
    EXPECT_EQ(object->accHitTest(0, 0, &v), CO_E_OBJNOTCONNECTED);
    EXPECT_EQ(object->accDoDefaultAction(Id(ok)), CO_E_OBJNOTCONNECTED);
    EXPECT_EQ(object->accNavigate(NAVDIR_FIRSTCHILD, Id(CHILDID_SELF), &v), CO_E_OBJNOTCONNECTED);
}

std::vector<std::pair<DWORD, LONG>> heard;  // event, child

void CALLBACK Hear(HWINEVENTHOOK, DWORD event, HWND, LONG object, LONG child, DWORD, DWORD) {
    if (object == OBJID_CLIENT && child != CHILDID_SELF) {
        heard.emplace_back(event, child);
    }
}

TEST_F(Accessibility, ChangesAreAnnounced) {
    heard.clear();
    const HWINEVENTHOOK hook = SetWinEventHook(EVENT_OBJECT_FOCUS, EVENT_OBJECT_VALUECHANGE, nullptr, Hear,
                                               GetCurrentProcessId(), 0, WINEVENT_OUTOFCONTEXT);
    ASSERT_NE(hook, nullptr);
    const auto heardOf = [&](DWORD event, const wchar_t* control) {
        return PumpUntil([&] {
            return std::find(heard.begin(), heard.end(), std::pair(event, static_cast<LONG>(ids[control]))) !=
                   heard.end();
        });
    };
    window.PaintManager().SetFocus(&window.Find(L"slider"), true);
    EXPECT_TRUE(heardOf(EVENT_OBJECT_FOCUS, L"slider"));
    window.Key(VK_RIGHT);
    EXPECT_TRUE(heardOf(EVENT_OBJECT_VALUECHANGE, L"slider"));
    window.Find<COptionUI>(L"two").SetSelected(true);
    EXPECT_TRUE(heardOf(EVENT_OBJECT_STATECHANGE, L"two"));
    window.Find(L"ok").SetText(L"Fine");
    EXPECT_TRUE(heardOf(EVENT_OBJECT_NAMECHANGE, L"ok"));
    window.Find(L"ok").SetEnabled(false);
    EXPECT_TRUE(heardOf(EVENT_OBJECT_STATECHANGE, L"ok"));
    window.Find(L"icon").SetAttribute(L"accname", L"Another name");
    EXPECT_TRUE(heardOf(EVENT_OBJECT_NAMECHANGE, L"icon"));
    EXPECT_EQ(Name(L"icon"), L"Another name");
    UnhookWinEvent(hook);
}

// Every event of the window's client object and its elements.
class Events {
  public:
    explicit Events(HWND window) {
        window_ = window;
        heard_.clear();
        hook_ = SetWinEventHook(EVENT_MIN, EVENT_MAX, nullptr, Hear, GetCurrentProcessId(), 0, WINEVENT_OUTOFCONTEXT);
    }
    ~Events() { UnhookWinEvent(hook_); }
    Events(const Events&) = delete;
    Events& operator=(const Events&) = delete;

    bool Got(DWORD event, long id) const {
        return PumpUntil([&] { return Has(event, id); });
    }
    // Of what has come until something later does.
    bool Has(DWORD event, long id) const {
        return std::find(heard_.begin(), heard_.end(), std::pair(event, static_cast<LONG>(id))) != heard_.end();
    }
    static void StartOver() { heard_.clear(); }

  private:
    static void CALLBACK Hear(HWINEVENTHOOK, DWORD event, HWND hwnd, LONG object, LONG child, DWORD, DWORD) {
        if (object == OBJID_CLIENT && hwnd == window_) {
            heard_.emplace_back(event, child);
        }
    }
    static inline HWND window_ = nullptr;
    static inline std::vector<std::pair<DWORD, LONG>> heard_;
    HWINEVENTHOOK hook_ = nullptr;
};

TEST_F(Accessibility, WhatComesAndGoesIsTold) {
    const Events events(window.GetHWND());
    auto& row = window.Find<CContainerUI>(L"row");
    auto cell = std::make_unique<CContainerUI>();
    auto button = std::make_unique<CButtonUI>();
    auto unseen = std::make_unique<CButtonUI>();
    unseen->SetVisible(false);
    const long id = button->GetId();
    const long unseenId = unseen->GetId();
    CContainerUI* const added = cell.get();
    cell->Add(std::move(button));
    cell->Add(std::move(unseen));
    row.Add(std::move(cell));
    EXPECT_TRUE(events.Got(EVENT_OBJECT_CREATE, id));
    EXPECT_TRUE(events.Got(EVENT_OBJECT_REORDER, CHILDID_SELF));
    EXPECT_FALSE(events.Has(EVENT_OBJECT_CREATE, unseenId)) << "not there yet";
    EXPECT_FALSE(events.Has(EVENT_OBJECT_CREATE, added->GetId())) << "no element";
    Events::StartOver();
    row.Remove(added);
    EXPECT_TRUE(events.Got(EVENT_OBJECT_DESTROY, id));
    EXPECT_TRUE(events.Got(EVENT_OBJECT_REORDER, CHILDID_SELF));
    Events::StartOver();
    row.SetVisible(false);
    EXPECT_TRUE(events.Got(EVENT_OBJECT_HIDE, ids[L"ok"]));
    EXPECT_TRUE(events.Got(EVENT_OBJECT_REORDER, CHILDID_SELF));
    Events::StartOver();
    row.SetVisible(true);
    EXPECT_TRUE(events.Got(EVENT_OBJECT_SHOW, ids[L"ok"]));
    Events::StartOver();
    row.SetMaxHeight(0);  // a panel that closes
    EXPECT_TRUE(events.Got(EVENT_OBJECT_HIDE, ids[L"ok"]));
    Events::StartOver();
    row.SetMaxHeight(40);
    EXPECT_TRUE(events.Got(EVENT_OBJECT_SHOW, ids[L"ok"]));
    EXPECT_TRUE(events.Got(EVENT_OBJECT_REORDER, CHILDID_SELF));
    Events::StartOver();
    row.SetMaxHeight(41);
    window.Find(L"ok").SetVisible(false);
    EXPECT_TRUE(events.Got(EVENT_OBJECT_HIDE, ids[L"ok"]));
    EXPECT_FALSE(events.Has(EVENT_OBJECT_SHOW, ids[L"icon"])) << "neither opened nor closed";
    EXPECT_FALSE(events.Has(EVENT_OBJECT_HIDE, ids[L"icon"]));
}

TEST_F(Accessibility, ALiveNameIsSaidAtOnce) {
    constexpr DWORD kLiveRegionChanged = 0x8019;
    const Events events(window.GetHWND());
    window.Find(L"ok").SetText(L"Quiet");
    EXPECT_TRUE(events.Got(EVENT_OBJECT_NAMECHANGE, ids[L"ok"]));
    window.Find(L"icon").SetAttribute(L"acclive", L"true");
    window.Find(L"icon").SetAttribute(L"accname", L"Loud");
    EXPECT_TRUE(events.Got(kLiveRegionChanged, ids[L"icon"]));
    EXPECT_FALSE(events.Has(kLiveRegionChanged, ids[L"ok"]));
    Events::StartOver();
    window.Find(L"icon").SetAttribute(L"accname", L"Loud");
    window.Find(L"ok").SetText(L"Later");
    EXPECT_TRUE(events.Got(EVENT_OBJECT_NAMECHANGE, ids[L"ok"]));
    EXPECT_FALSE(events.Has(kLiveRegionChanged, ids[L"icon"])) << "the same as before";
}

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"  // the system's interface has none

// The system's annotations: what was set and cleared, as "set element value" and "clear element".
class Annotations final : public IAccPropServices {
  public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void**) override { return E_NOINTERFACE; }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }
    ULONG STDMETHODCALLTYPE Release() override { return --references_; }
    HRESULT STDMETHODCALLTYPE SetHwndProp(HWND hwnd, DWORD object, DWORD child, MSAAPROPID property,
                                          VARIANT value) override {
        Check(hwnd, object, property);
        EXPECT_EQ(value.vt, VT_I4);
        calls.push_back("set " + std::to_string(child) + " " + std::to_string(value.lVal));
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE ClearHwndProps(HWND hwnd, DWORD object, DWORD child, const MSAAPROPID* properties,
                                             int count) override {
        EXPECT_EQ(count, 1);
        Check(hwnd, object, *properties);
        calls.push_back("clear " + std::to_string(child));
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE SetPropValue(const BYTE*, DWORD, MSAAPROPID, VARIANT) override { return Unused(); }
    HRESULT STDMETHODCALLTYPE SetPropServer(const BYTE*, DWORD, const MSAAPROPID*, int, IAccPropServer*,
                                            AnnoScope) override {
        return Unused();
    }
    HRESULT STDMETHODCALLTYPE ClearProps(const BYTE*, DWORD, const MSAAPROPID*, int) override { return Unused(); }
    HRESULT STDMETHODCALLTYPE SetHwndPropStr(HWND, DWORD, DWORD, MSAAPROPID, LPCWSTR) override { return Unused(); }
    HRESULT STDMETHODCALLTYPE SetHwndPropServer(HWND, DWORD, DWORD, const MSAAPROPID*, int, IAccPropServer*,
                                                AnnoScope) override {
        return Unused();
    }
    HRESULT STDMETHODCALLTYPE ComposeHwndIdentityString(HWND, DWORD, DWORD, BYTE**, DWORD*) override {
        return Unused();
    }
    HRESULT STDMETHODCALLTYPE DecomposeHwndIdentityString(const BYTE*, DWORD, HWND*, DWORD*, DWORD*) override {
        return Unused();
    }
    HRESULT STDMETHODCALLTYPE SetHmenuProp(HMENU, DWORD, MSAAPROPID, VARIANT) override { return Unused(); }
    HRESULT STDMETHODCALLTYPE SetHmenuPropStr(HMENU, DWORD, MSAAPROPID, LPCWSTR) override { return Unused(); }
    HRESULT STDMETHODCALLTYPE SetHmenuPropServer(HMENU, DWORD, const MSAAPROPID*, int, IAccPropServer*,
                                                 AnnoScope) override {
        return Unused();
    }
    HRESULT STDMETHODCALLTYPE ClearHmenuProps(HMENU, DWORD, const MSAAPROPID*, int) override { return Unused(); }
    HRESULT STDMETHODCALLTYPE ComposeHmenuIdentityString(HMENU, DWORD, BYTE**, DWORD*) override { return Unused(); }
    HRESULT STDMETHODCALLTYPE DecomposeHmenuIdentityString(const BYTE*, DWORD, HMENU*, DWORD*) override {
        return Unused();
    }

    std::vector<std::string> calls;
    int references_ = 0;

  private:
    static void Check(HWND hwnd, DWORD object, const GUID& property) {
        constexpr GUID kLiveSetting = {0xc12bcd8e, 0x2a8e, 0x4950, {0x8a, 0xe7, 0x36, 0x25, 0x11, 0x1d, 0x58, 0xeb}};
        EXPECT_TRUE(IsWindow(hwnd)) << "annotations of a window that is gone";
        EXPECT_EQ(object, static_cast<DWORD>(OBJID_CLIENT));
        EXPECT_TRUE(IsEqualGUID(property, kLiveSetting));
    }
    static HRESULT Unused() {
        ADD_FAILURE() << "not a call of this program";
        return E_NOTIMPL;
    }
};

#pragma GCC diagnostic pop

Annotations* g_annotations = nullptr;  // null: the system has none

HRESULT WINAPI MakeAnnotations(REFCLSID kind, IUnknown*, DWORD, REFIID, void** made) {
    constexpr GUID kServices = {0xb5f8350b, 0x0548, 0x48b1, {0xa6, 0xee, 0x88, 0xbd, 0x00, 0xb4, 0xa5, 0xe7}};
    EXPECT_TRUE(IsEqualGUID(kind, kServices));
    if (!g_annotations) {
        return REGDB_E_CLASSNOTREG;
    }
    g_annotations->AddRef();
    *made = static_cast<IAccPropServices*>(g_annotations);
    return S_OK;
}

TEST_F(Accessibility, ALiveElementIsAnnotatedOnceAndAsLongAsItsWindowIsThere) {
    const harness::ImportHook hook(GetModuleHandleW(L"DuiLib.dll"), "CoCreateInstance", &MakeAnnotations);
    Annotations annotations;
    g_annotations = &annotations;
    {
        TestWindow other(R"(<Window size="30,30"><Control name="live" accname="One" acclive="true"/></Window>)");
        const Events events(other.GetHWND());
        const std::string id = std::to_string(other.Find(L"live").GetId());
        other.Find(L"live").SetAttribute(L"accname", L"Two");
        other.Find(L"live").SetAttribute(L"accname", L"Three");
        EXPECT_THAT(annotations.calls, testing::ElementsAre("set " + id + " 1"));
        DestroyWindow(other.GetHWND());
        EXPECT_THAT(annotations.calls, testing::ElementsAre("set " + id + " 1", "clear " + id));
    }
    EXPECT_EQ(annotations.references_, 0);
    g_annotations = nullptr;
    TestWindow without(R"(<Window size="30,30"><Control name="live" accname="One" acclive="true"/></Window>)");
    const Events events(without.GetHWND());
    without.Find(L"live").SetAttribute(L"accname", L"Two");
    EXPECT_TRUE(events.Got(0x8019, without.Find(L"live").GetId()));
}

TEST_F(Accessibility, HelpIsTheDescription) {
    BSTR text = nullptr;
    EXPECT_EQ(object->get_accHelp(Id(ids[L"ok"]), &text), S_OK);
    EXPECT_EQ(Take(text), L"Press it");
    text = nullptr;
    EXPECT_EQ(object->get_accHelp(Id(ids[L"icon"]), &text), S_FALSE) << "its tooltip is its name";
    EXPECT_EQ(object->get_accHelp(Id(ids[L"ok"]), nullptr), E_POINTER);
}

TEST_F(Accessibility, AnOptionTellsItsPlaceInItsGroup) {
    TestWindow other(R"(<Window size="300,300"><VerticalLayout><VerticalLayout accname="Fruit"
        accposition="{group}: {n} / {count}"><VerticalLayout><Option name="a" group="f" text="Apple"/></VerticalLayout>
        <Option name="h" group="f" text="Hidden" visible="false"/><Option name="p" group="f" text="Pear"/>
        <Option name="s" text="Switch" tooltip="Turn it"/></VerticalLayout>
        <Option name="o" group="x" text="Outside" tooltip="Elsewhere"/></VerticalLayout></Window>)");
    EXPECT_EQ(other.Find(L"a").GetAccessibleDescription(), L"Fruit: 1 / 2");
    EXPECT_EQ(other.Find(L"p").GetAccessibleDescription(), L"Fruit: 2 / 2");
    EXPECT_EQ(other.Find(L"s").GetAccessibleDescription(), L"Turn it");
    EXPECT_EQ(other.Find(L"o").GetAccessibleDescription(), L"Elsewhere");
}

const harness::ImportHook* g_notify = nullptr;
HWND g_ended = nullptr;

// A queue may drop a window's last events with the window where both belong to one thread.
void WINAPI NoteEnd(DWORD event, HWND window, LONG object, LONG child) {
    if (event == EVENT_SYSTEM_DIALOGEND && object == OBJID_CLIENT && child == CHILDID_SELF) {
        g_ended = window;
    }
    g_notify->Original<decltype(&NotifyWinEvent)>()(event, window, object, child);
}

TEST_F(Accessibility, ABoxIsADialogWithTitleAndMessage) {
    TestWindow box(R"(<Window size="300,300" acctitle="head" accmessage="body" default="yes"><VerticalLayout>
        <Label name="head" text="A question"/><Text name="body" text="Really?"/><Button name="no" text="No"/>
        <Button name="yes" text="Yes"/></VerticalLayout></Window>)",
                   WS_OVERLAPPEDWINDOW, window.GetHWND());
    IAccessible* dialog = nullptr;
    ASSERT_EQ(AccessibleObjectFromWindow(box.GetHWND(), static_cast<DWORD>(OBJID_CLIENT), IID_IAccessible,
                                         reinterpret_cast<void**>(&dialog)),
              S_OK);
    const VARIANT self = Id(CHILDID_SELF);
    BSTR text = nullptr;
    dialog->get_accName(self, &text);
    EXPECT_EQ(Take(text), L"A question");
    dialog->get_accDescription(self, &text);
    EXPECT_EQ(Take(text), L"Really?");
    dialog->get_accHelp(self, &text);
    EXPECT_EQ(Take(text), L"Really?");
    VARIANT value{};
    dialog->get_accRole(self, &value);
    EXPECT_EQ(value.lVal, ROLE_SYSTEM_DIALOG);
    dialog->get_accState(Id(box.Find(L"yes").GetId()), &value);
    EXPECT_TRUE(value.lVal & STATE_SYSTEM_DEFAULT);
    dialog->get_accState(Id(box.Find(L"no").GetId()), &value);
    EXPECT_FALSE(value.lVal & STATE_SYSTEM_DEFAULT);
    // Shown modally: told, with the focus on its button; and told when it ends.
    const Events events(box.GetHWND());
    const long yes = box.Find(L"yes").GetId();
    UIMainQueue::getInstance()->dispatch([&] {
        EXPECT_TRUE(events.Got(EVENT_SYSTEM_DIALOGSTART, CHILDID_SELF));
        EXPECT_TRUE(events.Got(EVENT_OBJECT_FOCUS, yes));
        EXPECT_FALSE(events.Has(EVENT_SYSTEM_DIALOGEND, CHILDID_SELF));
        dialog->get_accState(Id(yes), &value);
        EXPECT_TRUE(value.lVal & STATE_SYSTEM_FOCUSED);
        dialog->Release();
        box.Close();
    });
    g_ended = nullptr;
    const HWND hwnd = box.GetHWND();
    const harness::ImportHook hook(GetModuleHandleW(L"DuiLib.dll"), "NotifyWinEvent", &NoteEnd);
    g_notify = &hook;
    box.ShowModal();
    EXPECT_EQ(g_ended, hwnd);
}

}  // namespace
}  // namespace DuiLib::Test
