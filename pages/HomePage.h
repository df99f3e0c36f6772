#pragma once
// The main page: the effects' switches, the background gallery, the beauty sliders and the preview's place.
//
// The page shows what the settings model says and hands every user action to it. It wires itself to the model in its
// constructor (five callbacks, the hub, the watcher of the settings key) and takes all of that back when it goes.
// Threads: UI thread. The model's callbacks and the hub may call in on the pipe client's or the watcher's thread; what
// comes from there is handed to the UI thread before a control is touched.
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "pages/GalleryThumbnails.h"
#include "pages/LivePreview.h"
#include "pages/PageBase.h"
#include "service/GlobalUtils.h"
#include "service/SettingsWatcher.h"

class HomeService;

namespace DuiLib {
class COptionUI;
}

class HomePage : public PageBase {
  public:
    explicit HomePage(DuiLib::CPaintManagerUI* paintManager);
    ~HomePage() override;

    void Initialize() override;
    void OnScaleChanged() override;
    // Shows a snapshot of the settings in every control. Any thread: other threads' calls are handed over.
    void Refresh(const GlobalUtils::FeatureStatusTuple& snapshot);

    // --- gallery
    // Builds a custom item before the add button; its index in the group, -1 without a group.
    int AddCustomItem(const std::wstring& name, const std::wstring& thumbnailPath, bool isVideo);
    bool DelBackgroudItem(int index, const std::wstring& path);
    // The pointer went from one control to another: the delete button of an item that it left is hidden. True when one
    // was.
    bool HideDelButton(const std::wstring& previousName, const std::wstring& currentName);

    // --- preview: see LivePreview
    int OnCreate(HWND parentWindow) { return livePreview_.OnCreate(parentWindow); }
    int CreateMF(HWND previewWindow, HWND parentWindow) { return livePreview_.CreateMF(previewWindow, parentWindow); }

    // An integer of the feature configuration file; 0 for everything that is missing or broken.
    static int GetCameraXmlConfig(const std::string& key);

  protected:
    void OnClick(DuiLib::TNotifyUI& msg) override;
    void OnMouseEnter(DuiLib::TNotifyUI& msg) override;
    void OnMouseLeave(DuiLib::TNotifyUI& msg) override;
    void OnScroll(DuiLib::TNotifyUI& msg) override;
    void OnActivate() override { livePreview_.Place(); }

  private:
    void WireModel();
    void SubscribeHub();
    void ShowSnapshot(const GlobalUtils::FeatureStatusTuple& snapshot);
    void FitPreviewText();
    void ShowCameraIllustration();
    void SelectBackgroundOption(const GlobalUtils::CustBkgrdInfo& background);

    // --- switches (HomePageSwitches.cpp)
    void ClickSwitch(DuiLib::CControlUI* sender, std::int32_t stored);
    void SwitchExclusion(std::int32_t state, const std::wstring& name);
    void RedrawSwitch(DuiLib::CControlUI* control, std::int32_t state);
    void OnBeautyKind(GlobalUtils::BeautyKind kind);

    // --- gallery (HomePageGallery.cpp)
    void ClickChangeBackground(const std::wstring& name);
    void AddOwnBackground(DuiLib::COptionUI& addButton);
    void RelayoutGallery(int count);
    void ShowToolTip(DuiLib::CControlUI* sender, bool show);
    void ShowHint(PageHost::Hint hint, DuiLib::CControlUI* anchor, const std::wstring& text, bool show);

    void ClickPreview(DuiLib::CControlUI* sender) { livePreview_.Click(sender); }
    void OpenIntroduction(const std::wstring& name);

    // --- constant after construction
    const DWORD uiThread_;
    std::map<int, std::wstring> switchImages_;
    HomeService* model_ = nullptr;  // the process's, or null: the page then does nothing with it
    bool configLoaded_ = false;

    // --- UI thread
    std::map<std::wstring, std::int32_t> switchStates_;
    std::map<std::wstring, std::int32_t> sliderValues_;
    std::set<std::wstring> backgroundButtons_;
    std::wstring itemUnderPointer_;  // of the user's own, or the last that was
    GalleryThumbnails thumbnails_{Manager()};
    LivePreview livePreview_;

    // Ends with the page: what was handed over and comes later finds it gone.
    std::shared_ptr<HomePage*> self_;
    std::vector<std::function<void()>> unsubscribe_;
    std::unique_ptr<SettingsWatcher> watcher_;  // stopped first
};
