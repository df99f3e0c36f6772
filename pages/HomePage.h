#pragma once
// The main page: the effects' switches, the background gallery, the beauty sliders and the preview's place.
//
// The page shows what the settings model says and hands every user action to it, through its parts: EffectSwitches,
// BackgroundGallery and LivePreview. It wires itself to the model in its
// constructor (five callbacks, the hub, the watcher of the settings key) and takes all of that back when it goes.
// Threads: UI thread. The model's callbacks and the hub may call in on the pipe client's or the watcher's thread; what
// comes from there is handed to the UI thread before a control is touched.
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "pages/BackgroundGallery.h"
#include "pages/EffectSwitches.h"
#include "pages/FeatureConfig.h"
#include "pages/LivePreview.h"
#include "pages/PageBase.h"
#include "pages/SnapshotRelay.h"
#include "service/GlobalUtils.h"
#include "service/SettingsWatcher.h"

class HomeService;

class HomePage : public PageBase {
  public:
    explicit HomePage(DuiLib::CPaintManagerUI* paintManager);
    ~HomePage() override;

    void Initialize() override;
    void OnScaleChanged() override;
    // Shows a snapshot of the settings in every control. Any thread: what comes from another one is shown a moment
    // later, and not at all when a newer one came meanwhile.
    void Refresh(const GlobalUtils::FeatureStatusTuple& snapshot);

    // --- gallery: see BackgroundGallery
    // Builds a custom item before the add button; its index in the group, -1 without a group.
    int AddCustomItem(const std::wstring& name, const std::wstring& thumbnailPath, bool isVideo) {
        return gallery_.AddCustomItem(name, thumbnailPath, isVideo);
    }
    // Adds each, as if it had been chosen with the add button. UI thread.
    void AddDroppedFiles(const std::vector<std::wstring>& paths) { gallery_.AddDroppedFiles(paths); }
    bool DelBackgroudItem(int index, const std::wstring& path) { return gallery_.DelBackgroudItem(index, path); }
    // The pointer went from one control to another: the delete button of an item that it left is hidden. True when one
    // was.
    bool HideDelButton(const std::wstring& previousName, const std::wstring& currentName) {
        return gallery_.HideDelButton(previousName, currentName);
    }

    // --- preview: see LivePreview
    int OnCreate(HWND parentWindow) { return livePreview_.OnCreate(parentWindow); }
    int CreateMF(HWND previewWindow, HWND parentWindow) { return livePreview_.CreateMF(previewWindow, parentWindow); }

    // An integer of the feature configuration file; 0 for everything that is missing or broken.
    static int GetCameraXmlConfig(const std::string& key) { return ReadFeatureConfig(key); }

  protected:
    void OnClick(DuiLib::TNotifyUI& msg) override;
    void OnMouseEnter(DuiLib::TNotifyUI& msg) override { gallery_.OnMouseEnter(*msg.sender); }
    void OnMouseLeave(DuiLib::TNotifyUI& msg) override { gallery_.OnMouseLeave(*msg.sender); }
    void OnFocusChanged(DuiLib::TNotifyUI& msg) override { gallery_.OnFocusChanged(*msg.sender); }
    void OnScroll(DuiLib::TNotifyUI&) override { gallery_.OnScroll(); }
    void OnActivate() override { livePreview_.Place(); }

  private:
    void WireModel();
    void SubscribeHub();
    void ShowSnapshot(const GlobalUtils::FeatureStatusTuple& snapshot);
    void FitPreviewText();
    void ShowCameraIllustration();
    void SelectBackgroundOption(const GlobalUtils::CustBkgrdInfo& background);

    void ClickPreview(DuiLib::CControlUI* sender) { livePreview_.Click(sender); }
    void OpenIntroduction(const std::wstring& name);

    // --- constant after construction
    const DWORD uiThread_;
    HomeService* const model_;  // the process's, or null: the page then does nothing with it
    bool configLoaded_ = false;

    // --- UI thread
    EffectSwitches switches_;
    BackgroundGallery gallery_;
    LivePreview livePreview_;

    SnapshotRelay relay_;
    std::vector<std::function<void()>> unsubscribe_;
    std::unique_ptr<SettingsWatcher> watcher_;  // stopped first
};
