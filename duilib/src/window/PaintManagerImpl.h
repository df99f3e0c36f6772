#pragma once
// What a paint manager is made of, for the files that implement it: PaintManagerUI.cpp (life, controls, notifications,
// fonts and images), PaintManagerWindow.cpp (messages, layout, painting, DPI), PaintManagerProcess.cpp (settings of the
// process). Thread: UI thread.
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "DuiLib/PaintManagerUI.h"
#include "accessibility/Accessible.h"
#include "accessibility/LiveAnnotation.h"
#include "paint/BackBuffer.h"
#include "paint/DirtyRegion.h"
#include "paint/ImageCache.h"
#include "suite/common/ComReference.h"
#include "suite/common/GdiObject.h"
#include "text/FontTable.h"
#include "theme/ThemeListener.h"
#include "window/InputRouter.h"
#include "window/RetiredControls.h"

namespace DuiLib {

class CPaintManagerUI::Impl final : public IThemeListener {
  public:
    explicit Impl(CPaintManagerUI& manager);
    ~Impl();
    Impl(const Impl&) = delete;
    Impl& operator=(const Impl&) = delete;

    Size ClientSizePx() const;
    Rect ClientRectPx() const;
    void UpdateLayout();
    void ReadPicturesAhead();
    // Brings the back buffer up to date; false when there is nothing to show.
    bool Render();
    void InvalidateAll();
    // The fonts are made anew: another DPI, or other settings of the system.
    void RenewFonts();
    void OnThemeChanged(const ThemeChange& change) override;
    void OnSize(WPARAM kind);
    void OnGetMinMaxInfo(MINMAXINFO& info) const;
    LRESULT OnGetObject(WPARAM wParam, LPARAM lParam);
    void OnWindowGone();

    CPaintManagerUI& owner;
    HWND window = nullptr;
    const suite::MemoryDc measureDc;
    int dpi = USER_DEFAULT_SCREEN_DPI;
    WindowSpec spec;
    FontTable fonts;
    unsigned fontGeneration = 0;
    ImageCache images;
    std::map<std::wstring, std::wstring> defaults, styles;

    RetiredControls retired;
    std::unique_ptr<CControlUI> root;
    InputRouter input;
    LiveAnnotation live;
    suite::ComReference<WindowAccessible> accessible;  // made when a screen reader first asks

    Size sizePx;  // the client area's, as it was when the window was last not minimised
    BackBuffer buffer;
    DirtyRegion dirty;
    bool layoutNeeded = false;
    bool arranging = false;
    bool treeChanged = false;  // arranged; the input router was not told yet

    std::vector<INotifyUI*> notifiers;
    std::vector<IMessageFilterUI*> filters;
    IQueryControlText* query = nullptr;
};

}  // namespace DuiLib
