#pragma once
// Hands notifications to member functions: a class declares a map of (type, control name, handler), and a window's
// pump passes what comes from a page's controls to the page's own pump, its "virtual window".
//
// A control belongs to the virtual window that it, or its nearest ancestor that has one, names (SetVirtualWnd).
// Thread: UI thread.
#include <map>
#include <string>
#include <vector>

#include "DuiLib/Export.h"
#include "DuiLib/Notify.h"

namespace DuiLib {

class DUILIB_API CNotifyPump {
  public:
    using Handler = void (CNotifyPump::*)(TNotifyUI&);
    struct Entry {
        const wchar_t* type;
        const wchar_t* controlName;  // null: any control
        Handler handler;
    };
    using NotifyMap = std::vector<Entry>;

    virtual ~CNotifyPump() = default;

    // `pump` is borrowed; it must be removed before it dies. False when the name is taken or empty.
    bool AddVirtualWnd(const std::wstring& name, CNotifyPump* pump);
    bool RemoveVirtualWnd(const std::wstring& name);

    // Calls the first entry that fits, in the map of the sender's virtual window when that is registered here, else
    // in this pump's own. True when one did.
    bool DispatchNotify(TNotifyUI& msg);

    // Makes an entry of a derived class: Bind<HomePage>(NotifyType::kClick, nullptr, &HomePage::OnClick).
    template <typename Class>
    static Entry Bind(const wchar_t* type, const wchar_t* controlName, void (Class::*handler)(TNotifyUI&)) {
        return {type, controlName, static_cast<Handler>(handler)};
    }

  protected:
    // The class's map; the base's is empty. Called on every notification, so it returns a static.
    virtual const NotifyMap& GetMessageMap() const;

  private:
    std::map<std::wstring, CNotifyPump*> virtualWnds_;
};

}  // namespace DuiLib
