#pragma once
// What travels from controls to the program: the notification record, and the interfaces that receive it.
// Thread: UI thread.
#include <windows.h>

#include <memory>
#include <string>

#include "DuiLib/Export.h"

namespace DuiLib {

class CControlUI;

// The notification types. wParam and lParam are 0 unless said.
namespace NotifyType {
inline constexpr wchar_t kClick[] = L"click";            // a button was pressed and released, or by keyboard
inline constexpr wchar_t kButtonDown[] = L"buttondown";  // a button went down
inline constexpr wchar_t kMouseEnter[] = L"mouseenter";  // the pointer came onto a control
inline constexpr wchar_t kMouseLeave[] = L"mouseleave";
inline constexpr wchar_t kSelectChanged[] = L"selectchanged";        // an option became selected or not (wParam)
inline constexpr wchar_t kValueChanged[] = L"valuechanged";          // a slider was released or stepped; wParam: value
inline constexpr wchar_t kMoveValueChanged[] = L"movevaluechanged";  // a slider is being dragged; wParam: value
inline constexpr wchar_t kLink[] = L"link";                          // a link of a text was followed; wParam: its index
inline constexpr wchar_t kTabSelect[] = L"tabselect";                // a tab layout shows another item; wParam: index
inline constexpr wchar_t kSetFocus[] = L"setfocus";
inline constexpr wchar_t kKillFocus[] = L"killfocus";
inline constexpr wchar_t kScroll[] = L"scroll";  // a container's content was scrolled
// The user chose another size of text in the system; the fonts have it already. The sender is the window's root, or
// null.
inline constexpr wchar_t kTextSizeChanged[] = L"textsizechanged";
}  // namespace NotifyType

struct TNotifyUI {
    std::wstring type;
    CControlUI* sender = nullptr;  // borrowed; valid during the notification
    WPARAM wParam = 0;
    LPARAM lParam = 0;
};

class INotifyUI {
  public:
    virtual void Notify(TNotifyUI& msg) = 0;

  protected:
    ~INotifyUI() = default;
};

// Sees every message of a window before the window does; true ends its way.
class IMessageFilterUI {
  public:
    virtual bool FilterMessage(UINT message, WPARAM wParam, LPARAM lParam, LRESULT& result) = 0;

  protected:
    ~IMessageFilterUI() = default;
};

// Makes controls of the program's own classes while a layout is built; null for a class that it does not know.
class IDialogBuilderCallback {
  public:
    virtual std::unique_ptr<CControlUI> CreateControl(const std::wstring& className) = 0;

  protected:
    ~IDialogBuilderCallback() = default;
};

// Gives the text that stands for a string key ("IDS_…") in a layout.
class IQueryControlText {
  public:
    virtual std::wstring QueryControlText(const std::wstring& key) = 0;

  protected:
    ~IQueryControlText() = default;
};

}  // namespace DuiLib
