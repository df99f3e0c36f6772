#pragma once
// The base of every page: one tree of controls from a layout file, shown in the main window's tab container, and the
// pump that receives the notifications of its controls.
// Thread: UI thread. The tree is owned by the page until it enters the tab container, then by that.
#include <memory>
#include <string>

#include "DuiLib/Layouts.h"
#include "DuiLib/NotifyPump.h"
#include "DuiLib/PaintManagerUI.h"
#include "pages/PageHost.h"

class PageBase : public DuiLib::CNotifyPump {
  public:
    ~PageBase() override;
    PageBase(const PageBase&) = delete;
    PageBase& operator=(const PageBase&) = delete;

    const std::wstring& GetPageName() const { return pageName_; }
    // The root of the page's tree; null when the layout could not be built.
    DuiLib::CControlUI* GetRoot() const { return root_; }

    // Runs once, when the window exists and the first page is shown.
    virtual void Initialize() {}
    // The window has another DPI, or texts another size: widths that follow a text are measured again.
    virtual void OnScaleChanged() {}
    // Puts the page into the tab container on first use, and shows it.
    void SelectTab(DuiLib::CTabLayoutUI* tabs, DuiLib::CNotifyPump* pump);
    // Asks the owner to switch to the page of that name.
    void ShowPage(const std::wstring& name, int flag);

    // --- what the parts of a page work with
    // A control of this page, also before the page is in the window's tree; null when the layout lacks it.
    DuiLib::CControlUI* Find(const std::wstring& name) const;
    template <typename Class>
    Class* FindAs(const std::wstring& name) const {
        return dynamic_cast<Class*>(Find(name));
    }
    // Width of a text on one line in 96-DPI units.
    int TextWidth(const std::wstring& text, int font) const;
    PageHost* Owner() const { return owner_; }
    DuiLib::CPaintManagerUI* Manager() const { return paintManager_; }

  protected:
    // `paintManager` is borrowed; it is the main window's, which outlives its pages. Builds the tree at once.
    PageBase(const std::wstring& layoutFile, const std::wstring& pageName, DuiLib::CPaintManagerUI* paintManager);

    const NotifyMap& GetMessageMap() const override;
    virtual void BuildLayout();
    // The page is shown (again).
    virtual void OnActivate() {}
    virtual void OnClick(DuiLib::TNotifyUI&) {}
    virtual void OnMouseEnter(DuiLib::TNotifyUI&) {}
    virtual void OnMouseLeave(DuiLib::TNotifyUI&) {}
    // The sender got or lost the focus of the keyboard.
    virtual void OnFocusChanged(DuiLib::TNotifyUI&) {}
    // What is under the pointer moves away: hints go.
    virtual void OnScroll(DuiLib::TNotifyUI&) {}

  private:
    PageHost* const owner_;                        // borrowed; may be null
    DuiLib::CPaintManagerUI* const paintManager_;  // borrowed
    const std::wstring pageName_, layoutFile_;
    std::unique_ptr<DuiLib::CControlUI> detached_;  // the tree, until the tab container takes it
    DuiLib::CControlUI* root_ = nullptr;            // borrowed from detached_ or the container
};
