#pragma once
// Text that may carry markup and links.
//
// Attributes beside those of Label:
//   showhtml: true | false, false     the text is markup (see src/Html.h for the subset)
//   linkcolor, hotlinkcolor: #AARRGGBB, the layout's link colours
// A link is followed by a click, or by Tab to it and Enter; "link" is sent with its index in wParam and this control
// as sender. The link that was followed last is the first that GetLinkContent gives: callers ask for link 0.
// Thread: UI thread.
#include <memory>

#include "DuiLib/LabelUI.h"

namespace DuiLib {

class HtmlLayout;

class DUILIB_API CTextUI : public CLabelUI {
  public:
    CTextUI();
    ~CTextUI() override;
    const wchar_t* GetClass() const override { return L"Text"; }
    AttributeResult ApplyAttribute(std::wstring_view name, std::wstring_view value) override;
    AccessibleInfo GetAccessibleInfo() const override;
    void DoDefaultAction() override;

    void SetText(const std::wstring& text) override;
    void SetPos(const Rect& px) override;
    void DoEvent(const TEventUI& event) override;

    bool IsShowHtml() const { return showHtml_; }
    int GetLinkCount() const;
    // The address of a link: 0 is the one that was followed last (before any was, the first of the text); the others
    // follow in the order of the text. Empty when there is none.
    std::wstring GetLinkContent(int index) const;

  protected:
    Size MeasureContent(Size availablePx) override;
    void PaintContent(Canvas& canvas, const Rect& dirtyPx) override;

  private:
    bool showHtml_ = false;
    DWORD linkColor_ = 0, hotLinkColor_ = 0;
    int hotLink_ = -1, pressedLink_ = -1, focusedLink_ = -1, followedLink_ = -1;
    std::unique_ptr<HtmlLayout> html_;
};

}  // namespace DuiLib
