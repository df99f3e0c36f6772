#include "DuiLib/TextUI.h"

#include <oleacc.h>

#include <algorithm>
#include <utility>

#include "DuiLib/PaintManagerUI.h"
#include "layout/LookAttributes.h"
#include "paint/Canvas.h"
#include "text/FontTable.h"
#include "text/HtmlLayout.h"
#include "text/TextBlock.h"

namespace DuiLib {

struct TextAttributes {
    static bool ShowHtml(CTextUI& c, std::wstring_view value) {
        return ApplyParsed(ParseBool(value), [&](bool show) { c.SetShowHtml(show); });
    }

    static constexpr AttributeEntry<CTextUI> kTable[] = {
        {L"showhtml", ShowHtml},
        {L"linkcolor", ApplyColor<CTextUI, &CTextUI::linkColor_>},
        {L"hotlinkcolor", ApplyColor<CTextUI, &CTextUI::hotLinkColor_>},
    };
};

namespace {

constexpr int kFocusRingGapDip = 2;  // between a link and its focus ring
constexpr int kFocusRingRadiusDip = 3;

HFONT FontOf(const FontTable& fonts, int font, const HtmlRun& look) {
    return fonts.GetVariant(font, look.bold, look.italic, look.underline || look.link >= 0);
}

// Measures with the fonts that the text is drawn with.
class GdiMeasurer final : public TextMeasurer {
  public:
    GdiMeasurer(HDC dc, const FontTable& fonts, int font, bool rightToLeft)
        : dc_(dc), fonts_(fonts), font_(font), rightToLeft_(rightToLeft), original_(::GetCurrentObject(dc, OBJ_FONT)) {}
    ~GdiMeasurer() { ::SelectObject(dc_, original_); }
    GdiMeasurer(const GdiMeasurer&) = delete;
    GdiMeasurer& operator=(const GdiMeasurer&) = delete;

    int WidthPx(std::wstring_view text, const HtmlRun& look) override {
        Select(look);
        return LineWidthPx(dc_, text, rightToLeft_);
    }
    int AscentPx(const HtmlRun& look) override {
        Select(look);
        return static_cast<int>(metrics_.tmAscent);
    }
    int HeightPx(const HtmlRun& look) override {
        Select(look);
        return static_cast<int>(metrics_.tmHeight);
    }

  private:
    void Select(const HtmlRun& look) {
        const HFONT wanted = FontOf(fonts_, font_, look);
        if (wanted != selected_) {
            ::SelectObject(dc_, wanted);
            ::GetTextMetricsW(dc_, &metrics_);
            selected_ = wanted;
        }
    }

    HDC dc_;
    const FontTable& fonts_;
    int font_;
    bool rightToLeft_;
    HGDIOBJ original_;
    HFONT selected_ = nullptr;
    TEXTMETRICW metrics_{};
};

}  // namespace

CTextUI::CTextUI() = default;
CTextUI::~CTextUI() = default;

AttributeResult CTextUI::ApplyAttribute(std::wstring_view name, std::wstring_view value) {
    const AttributeResult result = ApplyFromTable(TextAttributes::kTable, *this, name, value);
    return result == AttributeResult::kUnknown ? CLabelUI::ApplyAttribute(name, value) : result;
}

AccessibleInfo CTextUI::GetAccessibleInfo() const {
    AccessibleInfo info = CLabelUI::GetAccessibleInfo();
    if (html_ && info.name == GetText()) {
        info.name = SpokenText(html_->Text());
    }
    if (GetLinkCount() > 0) {
        info.role = ROLE_SYSTEM_LINK;
        info.state |= STATE_SYSTEM_LINKED;
        info.defaultAction = L"Jump";
        info.value = html_->Text().links[static_cast<size_t>(std::max(0, focusedLink_))];
    }
    return info;
}

void CTextUI::DoDefaultAction() {
    Follow(std::max(0, focusedLink_));
}

// --- text and links

void CTextUI::SetText(const std::wstring& text) {
    if (GetText() != text) {
        CLabelUI::SetText(text);
        ParseText();
    }
}

void CTextUI::SetShowHtml(bool show) {
    if (show == IsShowHtml()) {
        return;
    }
    html_ = show ? std::make_unique<HtmlLayout>(HtmlText{}) : nullptr;
    ParseText();
    Invalidate();
    NeedUpdate();
}

void CTextUI::ParseText() {
    hotLink_ = pressedLink_ = followedLink_ = focusedLink_ = -1;
    if (html_) {
        html_ = std::make_unique<HtmlLayout>(ParseHtml(GetText()));
        arranged_ = {};
        if (IsFocused() && GetLinkCount() > 0) {
            focusedLink_ = 0;
        }
    }
}

int CTextUI::GetLinkCount() const {
    return html_ ? static_cast<int>(html_->Text().links.size()) : 0;
}

std::wstring CTextUI::GetLinkContent(int index) const {
    if (index < 0 || index >= GetLinkCount()) {
        return {};
    }
    if (followedLink_ > 0 && index <= followedLink_) {
        index = index == 0 ? followedLink_ : index - 1;
    }
    return html_->Text().links[static_cast<size_t>(index)];
}

void CTextUI::Follow(int link) {
    if (link >= 0 && link < GetLinkCount() && IsEnabled()) {
        followedLink_ = link;
        SendNotify(NotifyType::kLink, static_cast<WPARAM>(link));
    }
}

// --- arrangement

void CTextUI::Arrange(int widthPx) const {
    const Arranged wanted{widthPx,   GetManager()->GetFontGeneration(), GetFont(), WordWrap(), IsRightToLeft(),
                          GetAlign()};
    if (wanted == arranged_) {
        return;
    }
    arranged_ = wanted;
    GdiMeasurer measurer(GetManager()->GetPaintDC(), GetManager()->Fonts(), GetFont(), wanted.rightToLeft);
    const auto align = GetAlign() == HAlign::kLeft     ? HtmlLayout::Align::kNear
                       : GetAlign() == HAlign::kCenter ? HtmlLayout::Align::kCenter
                                                       : HtmlLayout::Align::kFar;
    html_->Arrange(widthPx, WordWrap(), align, wanted.rightToLeft, measurer);
}

Point CTextUI::TextOriginPx() const {
    const Rect rect = TextRectPx();
    Arrange(rect.Width());
    const int spare = GetVAlign() == VAlign::kTop ? 0 : rect.Height() - html_->SizePx().cy;
    return {rect.left, rect.top + std::max(0, GetVAlign() == VAlign::kCenter ? spare / 2 : spare)};
}

Size CTextUI::MeasureContent(Size availablePx) {
    if (!html_ || !GetManager()) {
        return CLabelUI::MeasureContent(availablePx);
    }
    const Rect padding = TextPaddingPx();
    const Size around{padding.left + padding.right, padding.top + padding.bottom};
    Arrange(std::max(1, availablePx.cx - around.cx));
    return {html_->SizePx().cx + around.cx, html_->SizePx().cy + around.cy};
}

int CTextUI::LinkAt(Point px) const {
    if (!html_ || !GetManager() || !TextRectPx().Contains(px)) {
        return -1;
    }
    const Point origin = TextOriginPx();
    return html_->LinkAt({px.x - origin.x, px.y - origin.y});
}

// --- events

void CTextUI::SetHotLink(int link) {
    if (hotLink_ != link) {
        hotLink_ = link;
        Invalidate();
    }
}

void CTextUI::FocusLink(int link) {
    if (focusedLink_ != link) {
        focusedLink_ = link;
        Invalidate();
        if (GetManager() && link >= 0) {
            GetManager()->NotifyAccessible(this, EVENT_OBJECT_VALUECHANGE);
        }
    }
}

bool CTextUI::MoveFocusWithin(bool forward) {
    const int next = focusedLink_ + (forward ? 1 : -1);
    if (focusedLink_ < 0 || next < 0 || next >= GetLinkCount()) {
        return false;
    }
    FocusLink(next);
    return true;
}

void CTextUI::DoEvent(const TEventUI& event) {
    switch (event.type) {
        case EventType::kMouseMove:
            SetHotLink(IsEnabled() ? LinkAt(event.mousePx) : -1);
            break;
        case EventType::kMouseLeave:
            SetHotLink(-1);
            break;
        case EventType::kButtonDown:
            pressedLink_ = LinkAt(event.mousePx);
            if (pressedLink_ >= 0 && GetManager()) {
                GetManager()->SetCapture(this);
                return;
            }
            break;
        case EventType::kButtonUp:
            if (pressedLink_ >= 0) {
                const int link = std::exchange(pressedLink_, -1);
                if (GetManager()) {
                    GetManager()->ReleaseCapture();
                }
                if (link == LinkAt(event.mousePx)) {
                    focusedLink_ = IsFocused() ? link : focusedLink_;
                    Follow(link);
                }
                return;
            }
            break;
        case EventType::kCaptureLost:
            pressedLink_ = -1;
            break;
        case EventType::kSetCursor:
            // Not the hot link: the cursor is asked for before the pointer's move arrives.
            if (IsEnabled() && LinkAt(event.mousePx) >= 0) {
                ::SetCursor(::LoadCursorW(nullptr, IDC_HAND));
                return;
            }
            break;
        case EventType::kSetFocus:
            FocusLink(event.shift ? GetLinkCount() - 1 : std::min(0, GetLinkCount() - 1));
            break;
        case EventType::kKillFocus:
            FocusLink(-1);
            break;
        case EventType::kKeyDown:
            if (focusedLink_ >= 0 && (event.repeat ? event.key == VK_RETURN : HandleKey(event.key))) {
                return;
            }
            break;
        default:
            break;
    }
    CLabelUI::DoEvent(event);
}

bool CTextUI::HandleKey(WORD key) {
    switch (key) {
        case VK_RETURN:
        case VK_SPACE:
            Follow(focusedLink_);
            return true;
        case VK_LEFT:
        case VK_RIGHT:
            return MoveFocusWithin((key == VK_RIGHT) != IsRightToLeft());
        case VK_UP:
        case VK_DOWN:
            return MoveFocusWithin(key == VK_DOWN);
        default:
            return false;
    }
}

// --- look

DWORD CTextUI::ColorOf(const HtmlRun& run) const {
    if (!IsEnabled() || (run.link < 0 && run.color == 0)) {
        return Painted(CurrentTextColor(), ColorUse::kText);
    }
    if (run.link < 0) {
        return Painted(run.color, ColorUse::kText);
    }
    const WindowSpec& spec = GetManager()->GetWindowSpec();
    const bool hot = run.link == hotLink_;
    const Color& own = hot ? hotLinkColor_ : linkColor_;
    return Painted(!own.IsNone() ? own : hot ? spec.hotLinkColor : spec.linkColor, ColorUse::kLink);
}

void CTextUI::PaintContent(Canvas& canvas, const Rect& dirtyPx) {
    if (!html_ || !GetManager()) {
        CLabelUI::PaintContent(canvas, dirtyPx);
        return;
    }
    const Point origin = TextOriginPx();
    const Rect earlier = canvas.PushClip(TextRectPx());
    const UINT style = DT_SINGLELINE | DT_NOPREFIX | (IsRightToLeft() ? DT_RTLREADING : 0);
    for (const HtmlLayout::Piece& piece : html_->Pieces()) {
        const HtmlRun& run = html_->Text().runs[piece.run];
        Rect rect = piece.rectPx.Offset(origin.x, origin.y);
        if (!IsRightToLeft()) {
            rect.right += rect.Height();  // slanted letters lean over their end
        }
        canvas.DrawText(html_->TextOf(piece), rect, FontOf(GetManager()->Fonts(), GetFont(), run), ColorOf(run), style);
    }
    canvas.RestoreClip(earlier);
}

void CTextUI::PaintFocusRing(Canvas& canvas) const {
    if (focusedLink_ < 0 || !GetManager()) {
        CLabelUI::PaintFocusRing(canvas);
        return;
    }
    const Point origin = TextOriginPx();
    const int gap = ToPx(kFocusRingGapDip);
    for (const Rect& rect : html_->LinkRects(focusedLink_)) {
        const Rect around = rect.Offset(origin.x, origin.y).Deflate({-gap, 0, -gap, 0}).Intersect(GetPos());
        canvas.StrokeRect(around, Painted(GetManager()->GetWindowSpec().focusColor, ColorUse::kLine),
                          std::max(1, ToPx(1)), ToPx(kFocusRingRadiusDip));
    }
}

}  // namespace DuiLib
