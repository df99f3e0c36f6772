#pragma once
// The home page's background gallery: choosing a background, the cells of the user's own, hover and hints.
//
// The model stores, makes and deletes; the gallery shows. Its add button is always the last entry. What a new entry
// costs in height is GalleryRows' business, a cell's parts GalleryCell's, the pictures in the cells GalleryThumbnails'.
// Thread: UI thread.
#include <set>
#include <string>
#include <vector>

#include "pages/GalleryThumbnails.h"
#include "pages/PageHost.h"

class HomeService;
class PageBase;

namespace DuiLib {
class CControlUI;
class COptionUI;
}  // namespace DuiLib

class BackgroundGallery {
  public:
    // Borrowed: the page, which holds the controls and owns this object, and the process's model, null where there is
    // none.
    BackgroundGallery(const PageBase& page, HomeService* model);
    BackgroundGallery(const BackgroundGallery&) = delete;
    BackgroundGallery& operator=(const BackgroundGallery&) = delete;

    // A background is being made: the user's own are neither chosen, added nor deleted meanwhile.
    bool IsAdding() const { return isAdding_; }
    bool IsBackground(const std::wstring& name) const { return buttons_.contains(name); }
    // The option of that name was chosen. REQUIRES: a model, and it is a background.
    void ClickChangeBackground(const std::wstring& name);

    // As the operations of HomePage of these names.
    void AddDroppedFiles(const std::vector<std::wstring>& paths);
    int AddCustomItem(const std::wstring& name, const std::wstring& thumbnailPath, bool isVideo);
    bool DelBackgroudItem(int index, const std::wstring& path);
    bool HideDelButton(const std::wstring& previousName, const std::wstring& currentName);

    void OnMouseEnter(DuiLib::CControlUI& control);
    void OnMouseLeave(DuiLib::CControlUI& control);
    // The delete button comes with the focus ring as it comes with the pointer.
    void OnFocusChanged(const DuiLib::CControlUI& control);
    // The items move and the pointer does not.
    void OnScroll();

  private:
    void AddOwnBackground(DuiLib::COptionUI& addButton);
    void SetAdding(DuiLib::COptionUI& addButton, bool isAdding);
    // True when there is no room, which is told.
    bool TellFull();
    void ShowAdded(DuiLib::COptionUI& addButton);
    // Automatic framing moves the picture, so it does not go with a background.
    void TurnOffWhatExcludesBackgrounds();
    void RelayoutGallery(int count);
    void ShowToolTip(DuiLib::CControlUI& sender, bool show);
    void ShowHint(PageHost::Hint kind, DuiLib::CControlUI& anchor, const std::wstring& text, bool show);

    const PageBase& page_;
    HomeService* const model_;
    std::set<std::wstring> buttons_;
    bool isAdding_ = false;
    std::wstring itemUnderPointer_;  // of the user's own, or the last that was
    GalleryThumbnails thumbnails_;
};
