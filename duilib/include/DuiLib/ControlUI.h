#pragma once
// The base of every control: a rectangle of a window without a window of its own.
//
// A tree of controls lives through these passes, each in its own function:
//   1 build    CDialogBuilder makes controls and sets attributes
//   2 measure  EstimateSize, from the leaves up: how large would you like to be?
//   3 arrange  SetPos, from the root down: this is your rectangle
//   4 paint    Paint, only what meets the dirty rectangle, parents before children
//   5 events   the paint manager finds the control under the pointer, or with the focus, and calls DoEvent
// A change that can move others calls NeedUpdate (measure and arrange again before the next paint), any other change
// Invalidate. A control that is not visible takes no room.
//
// Attributes (name: values, default):
//   name: text, ""                        looked up by FindControl
//   width, height: number (96-DPI units) | auto | fill, fill      auto: what EstimateSize says
//   minwidth, maxwidth, minheight, maxheight: number, 0 and unlimited; a maximum of 0 makes the control disappear
//   growheight: true | false, false       with a larger size of text than usual in the system, `height` is the least
//                                         height, and maxheight is no limit unless it is 0: the content has its room
//   padding: l,t,r,b, 0,0,0,0             room outside the control
//   float: true | false, false            not arranged with its siblings, but placed by `pos`
//   pos: l,t,r,b, 0,0,0,0                 rectangle of a floating control within its parent, in units
//   align: left | center | right, left    where a control narrower than its place stands (labels use it for the text)
//   visible, enabled: true | false, true
//   text: text, ""                        a value that begins with "IDS_" is a key of the string tables
//   tooltip: text, ""                     shown on hover; also the name for a screen reader where there is no text
//   accname: text, ""                     name for a screen reader, before text and tooltip
//   acclive: true | false, false          a change of that name is said at once, wherever the user is
//   bkcolor: colour, none                 #AARRGGBB (0 is none), or a name of the theme's table
//   bordercolor, focusbordercolor: colour, none
//   bordersize: number, 0                 width of the border, drawn inside the rectangle
//   borderround: number, 0                radius of the corners
//   bkimage: image attribute, none        see ImageAttribute.h; clipped to the rounded corners
//   IsNcHit: true | false, false          the window is dragged by it
//   virtualwnd: text, ""                  see NotifyPump.h
//   keyboard: true | false, per class     can have the focus
//   mouse: true | false, true             false: invisible to the pointer; a container's children are not
//   cursor: arrow | hand, arrow
//   userdata: text, ""
// Thread: UI thread. Ownership: a parent owns its children; a control knows parent and manager, both borrowed.
#include <windows.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "DuiLib/Color.h"
#include "DuiLib/Event.h"
#include "DuiLib/Export.h"
#include "DuiLib/Geometry.h"

namespace DuiLib {

class Canvas;
class CContainerUI;
class CPaintManagerUI;

// Bits of a control's state.
inline constexpr unsigned kStateFocused = 0x01;
inline constexpr unsigned kStateSelected = 0x02;
inline constexpr unsigned kStateDisabled = 0x04;
inline constexpr unsigned kStateHot = 0x08;
inline constexpr unsigned kStatePushed = 0x10;
inline constexpr unsigned kStateCaptured = 0x40;

enum class AttributeResult { kOk, kUnknown, kBadValue };

enum class HAlign { kLeft, kCenter, kRight };
enum class VAlign { kTop, kCenter, kBottom };

// What a control is to a screen reader.
struct AccessibleInfo {
    std::wstring name;
    std::wstring value;          // empty: none
    std::wstring defaultAction;  // empty: none
    long role = 0;               // ROLE_SYSTEM_…; 0: not shown to screen readers
    long state = 0;              // STATE_SYSTEM_… beside those that the base knows (focus, disabled, invisible)
};

// A length that a layout gives: a number of units, or one of the two words.
struct LengthDip {
    enum class Kind { kFill, kAuto, kFixed };
    Kind kind = Kind::kFill;
    int value = 0;
    bool operator==(const LengthDip&) const = default;
};

class DUILIB_API CControlUI {
  public:
    CControlUI();
    virtual ~CControlUI();
    CControlUI(const CControlUI&) = delete;
    CControlUI& operator=(const CControlUI&) = delete;

    // The class's name in layouts ("Button"); also what FindControl's callers may test before a cast.
    virtual const wchar_t* GetClass() const { return L"Control"; }

    // --- identity and tree
    const std::wstring& GetName() const { return name_; }
    void SetName(const std::wstring& name) { name_ = name; }
    CContainerUI* GetParent() const { return parent_; }
    CPaintManagerUI* GetManager() const { return manager_; }
    // Set by the container or the manager; null when the control leaves the tree.
    virtual void SetManager(CPaintManagerUI* manager, CContainerUI* parent);
    // Unique within the process for the life of the process; identifies the control to screen readers.
    long GetId() const { return id_; }
    const std::wstring& GetVirtualWnd() const { return virtualWnd_; }
    void SetVirtualWnd(const std::wstring& name) { virtualWnd_ = name; }
    const std::wstring& GetUserData() const { return userData_; }

    // --- attributes
    // Unknown names go to the base class; CControlUI's answer is Unknown.
    virtual AttributeResult ApplyAttribute(std::wstring_view name, std::wstring_view value);
    // As ApplyAttribute, and logs what is not Ok.
    void SetAttribute(std::wstring_view name, std::wstring_view value);

    // --- text
    const std::wstring& GetText() const { return text_; }
    virtual void SetText(const std::wstring& text);
    const std::wstring& GetToolTip() const { return toolTip_; }
    void SetToolTip(const std::wstring& text) { toolTip_ = text; }

    // --- state
    bool IsVisible() const { return visible_; }
    // Visible, and every ancestor too (a tab layout's hidden items are not), and not squeezed to nothing. False until
    // the first arrangement.
    bool IsShown() const;
    virtual void SetVisible(bool visible);
    bool IsEnabled() const { return (state_ & kStateDisabled) == 0; }
    // Enabled, and every ancestor too.
    bool IsEnabledInTree() const;
    virtual void SetEnabled(bool enabled);
    unsigned GetState() const { return state_; }
    void SetState(unsigned state);  // repaints when it changed
    bool IsFocused() const { return (state_ & kStateFocused) != 0; }
    void SetFocus();
    // Enabled, shown and able to have the focus.
    bool CanHaveFocus() const;
    // Tab stops here; an option of a group is one only where it is the selected one, or the first of none.
    virtual bool IsTabStop() const { return CanHaveFocus(); }
    // Tab within the focused control, as from link to link; false when there is nothing further.
    virtual bool MoveFocusWithin(bool) { return false; }
    bool IsNcHit() const { return ncHit_; }

    // --- size, in 96-DPI units
    void SetFixedWidth(int dip);
    void SetFixedHeight(int dip);
    LengthDip GetWidth() const { return width_; }
    LengthDip GetHeight() const { return height_; }
    void SetMinWidth(int dip);
    void SetMaxWidth(int dip);
    void SetMinHeight(int dip);
    void SetMaxHeight(int dip);
    int GetMinWidth() const { return minSizeDip_.cx; }
    int GetMaxWidth() const { return maxSizeDip_.cx; }
    int GetMinHeight() const { return minSizeDip_.cy; }
    int GetMaxHeight() const { return maxSizeDip_.cy; }
    // Its heights give way to its content: see growheight.
    bool GrowsNow() const;
    // A maximum of 0 in either direction: takes no room and is not shown.
    bool IsCollapsed() const { return maxSizeDip_.cx == 0 || maxSizeDip_.cy == 0; }
    HAlign GetAlign() const { return align_; }
    void SetPadding(const Rect& dip);
    const Rect& GetPadding() const { return paddingDip_; }
    bool IsFloat() const { return floating_; }
    const Rect& GetFloatPos() const { return floatPosDip_; }

    // --- passes
    // The wanted size in pixels, without padding, given the room that there is (a limit for wrapped text).
    // Honours fixed, minimum and maximum sizes: subclasses override MeasureContent instead.
    Size EstimateSize(Size availablePx);
    // Client coordinates of the window.
    const Rect& GetPos() const { return posPx_; }
    virtual void SetPos(const Rect& px);
    // Paints itself; called with the canvas clipped to the dirty part of this control.
    virtual void Paint(Canvas& canvas, const Rect& dirtyPx);
    // The wheel and keys that a control does not use go on to its parent.
    virtual void DoEvent(const TEventUI& event);
    void Invalidate();
    void NeedUpdate();
    // The control under the point: itself, or a child for a container. Null when outside, hidden or mouse="false".
    virtual CControlUI* FindControlAt(Point px);
    virtual CControlUI* FindControlByName(std::wstring_view name);
    // Calls `visit` for itself and every descendant, parents first, in layout order, until it returns false.
    virtual bool Visit(const std::function<bool(CControlUI&)>& visit);

    // --- look
    // As a number, for arithmetic: a name's value in the light or the dark theme.
    DWORD GetBkColor() const;
    // In a contrast theme a number is not painted; the name that the control had before is, where it had one.
    void SetBkColor(const Color& color);
    void SetBorderColor(const Color& color);
    const std::wstring& GetBkImage() const { return bkImage_; }
    void SetBkImage(const std::wstring& imageAttribute);

    // --- accessibility
    virtual AccessibleInfo GetAccessibleInfo() const;
    // What is said beside the name; the tooltip, where it says more than the name.
    virtual std::wstring GetAccessibleDescription() const;
    // What a screen reader's "press" does; nothing in the base.
    virtual void DoDefaultAction() {}
    // A value typed by a screen reader; false when the control takes none.
    virtual bool SetAccessibleValue(const std::wstring&) { return false; }

  protected:
    // The wanted size of the content in pixels; 0,0 in the base.
    virtual Size MeasureContent(Size availablePx);
    // Pieces of Paint in their order: background colour, background image, content, border, focus ring.
    virtual void PaintContent(Canvas& canvas, const Rect& dirtyPx);
    // The background colour of the present state.
    virtual Color CurrentBkColor() const;
    // The colour as it is painted in the present theme.
    static DWORD Painted(const Color& color, ColorUse use);
    // In a contrast theme no picture lies behind text.
    virtual bool ShowsBkImage() const;
    // Called when the focus came by the keyboard.
    virtual void PaintFocusRing(Canvas& canvas) const;
    void SetAlign(HAlign align) { align_ = align; }
    virtual bool FocusableByDefault() const { return false; }
    int Dpi() const;  // of the manager; 96 without one
    int ToPx(int dip) const { return DipToPx(dip, Dpi()); }
    bool IsRightToLeft() const;
    // Sends a notification through the manager.
    void SendNotify(const wchar_t* type, WPARAM wParam = 0, LPARAM lParam = 0);
    // Over the control, or over a rectangle of it; an empty attribute paints nothing.
    void PaintImage(Canvas& canvas, const std::wstring& imageAttribute) const;
    void PaintImage(Canvas& canvas, const std::wstring& imageAttribute, const Rect& px) const;
    // A text of a layout: a key of the string tables becomes its text.
    std::wstring ResolveText(std::wstring_view text) const;

    unsigned state_ = 0;

  private:
    friend struct ControlAttributes;  // the attribute table
    // What MeasureContent said for that room; labels are measured several times in one arrangement.
    static constexpr unsigned kNotMeasured = ~0u;
    struct Measured {
        Size availablePx, contentPx;
        unsigned fontGeneration = kNotMeasured;
    };
    static constexpr int kMeasuredCount = 3;

    void ForgetMeasured();
    void TellNameChanged();
    void ChangeLength(LengthDip& length, LengthDip value);
    void ChangeLimit(int& limit, int dip);

    const long id_;
    CPaintManagerUI* manager_ = nullptr;  // borrowed; the window outlives its tree
    CContainerUI* parent_ = nullptr;      // borrowed; owns this control
    std::wstring name_, text_, toolTip_, accName_, virtualWnd_, userData_, bkImage_;
    bool visible_ = true, floating_ = false, ncHit_ = false, mouse_ = true, handCursor_ = false, growHeight_ = false,
         accLive_ = false;
    std::optional<bool> keyboard_;
    HAlign align_ = HAlign::kLeft;
    LengthDip width_, height_;
    Size minSizeDip_{0, 0};
    Size maxSizeDip_;
    Rect paddingDip_, floatPosDip_, posPx_;
    Color bkColor_, borderColor_, focusBorderColor_;
    Color bkColorName_;  // the last one of bkColor_ that was a name
    int borderSizeDip_ = 0, borderRoundDip_ = 0;
    Measured measured_[kMeasuredCount];
    int measuredNext_ = 0;
};

}  // namespace DuiLib
