#pragma once
// Builds trees of controls from layout files (XML).
//
// A layout file has a <Window> root with the attributes of WindowSpec (size="w,h", minsize, maxsize, growwithtext,
// roundcorner, bkcolor, bordercolor, default="name", cancel="name", closeonescape, acctitle="name", accmessage="name",
// textcolor, disabledtextcolor, linkcolor, hotlinkcolor, focuscolor) or any control as root (a page). Under <Window>,
// before the one root control:
//   <Font id="13" face="" size="14" bold="false" weight="400" italic="false" underline="false" default="false"/>
//   <Default name="Button" value="font=&quot;13&quot; …"/>   attributes that every Button starts with
//   <Style name="card" value="…"/>                            used by style="card" on any control
//   <Include source="layout\other.xml"/>                      in place of a control
// A page's root may hold Font, Default and Style elements too.
// Unknown elements and attributes, bad values and files that are missing or broken are logged with file and line, and
// passed over. Limits: 1 MiB, 64 levels, 10,000 elements; document type definitions are refused.
// Thread: UI thread.
#include <memory>
#include <string>
#include <string_view>

#include "DuiLib/ControlUI.h"
#include "DuiLib/Notify.h"

namespace DuiLib {

class DUILIB_API CDialogBuilder {
  public:
    // `layoutFile`: path below the resource folder. `type`: root element that is expected, null for any. `callback`
    // makes the program's own control classes, may be null. `manager` gets window attributes, fonts and styles. Null
    // when the file cannot be read or its root is no control.
    std::unique_ptr<CControlUI> Create(const std::wstring& layoutFile, const wchar_t* type,
                                       IDialogBuilderCallback* callback, CPaintManagerUI* manager);
    // As Create, from text instead of a file; `sourceName` stands in log lines.
    std::unique_ptr<CControlUI> CreateFromText(std::string_view utf8Xml, const std::wstring& sourceName,
                                               IDialogBuilderCallback* callback, CPaintManagerUI* manager);
};

}  // namespace DuiLib
