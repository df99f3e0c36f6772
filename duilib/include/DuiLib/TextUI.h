#pragma once
// Text that may carry markup and links.
//
// Attributes beside those of Label:
//   showhtml: true | false, false     the text is markup (the subset is in src/text/HtmlParser.h)
//   linkcolor, hotlinkcolor: colour, the layout's link colours
// A link is followed by a click, or by Tab to it and Enter; "link" is sent with its index in wParam and this control
// as sender. The link that was followed last is the first that GetLinkContent gives: callers ask for link 0. A text
// with links can have the focus; Tab and the arrow keys walk its links.
// Thread: UI thread.
#include <memory>

#include "DuiLib/LabelUI.h"

namespace DuiLib {

class HtmlLayout;
struct HtmlRun;

class DUILIB_API CTextUI : public CLabelUI {
  public:
    CTextUI();
    ~CTextUI() override;
    const wchar_t* GetClass() const override { return L"Text"; }
    AttributeResult ApplyAttribute(std::wstring_view name, std::wstring_view value) override;
    AccessibleInfo GetAccessibleInfo() const override;
    void DoDefaultAction() override;
    bool MoveFocusWithin(bool forward) override;

    void SetText(const std::wstring& text) override;
    void DoEvent(const TEventUI& event) override;

    bool IsShowHtml() const { return html_ != nullptr; }
    int GetLinkCount() const;
    // The address of a link: 0 is the one that was followed last (before any was, the first of the text); the others
    // follow in the order of the text. Empty when there is none.
    std::wstring GetLinkContent(int index) const;

  protected:
    bool FocusableByDefault() const override { return GetLinkCount() > 0; }
    Size MeasureContent(Size availablePx) override;
    void PaintContent(Canvas& canvas, const Rect& dirtyPx) override;
    void PaintFocusRing(Canvas& canvas) const override;

  private:
    friend struct TextAttributes;
    // What the arrangement of the lines was made for.
    struct Arranged {
        int widthPx = -1;
        unsigned fonts = 0;  // the manager's generation
        int font = 0;
        bool wrap = false, rightToLeft = false;
        HAlign align{};
        bool operator==(const Arranged&) const = default;
    };

    void SetShowHtml(bool show);
    void ParseText();
    void Arrange(int widthPx) const;
    // Where the arranged lines begin, arranged for the control's width.
    Point TextOriginPx() const;
    int LinkAt(Point px) const;
    void SetHotLink(int link);
    void FocusLink(int link);
    void Follow(int link);
    bool HandleKey(WORD key);
    // As it is painted.
    DWORD ColorOf(const HtmlRun& run) const;

    Color linkColor_, hotLinkColor_;
    int hotLink_ = -1, pressedLink_ = -1, focusedLink_ = -1, followedLink_ = -1;
    std::unique_ptr<HtmlLayout> html_;  // null: plain text
    mutable Arranged arranged_;
};

}  // namespace DuiLib
