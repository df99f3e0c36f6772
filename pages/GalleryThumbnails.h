#pragma once
// The pictures in the gallery's cells of the user's own backgrounds, read beside the UI thread.
//
// Why: a background may have sixteen million pixels, and there may be thirty-two of them; the window must neither wait
// for them nor keep them. A cell is plain until its thumbnail comes. Nothing runs when all have come.
// Threads: UI thread; the reading thread is the object's own.
#include <windows.h>

#include <memory>
#include <string>

#include "DuiLib/PaintManagerUI.h"

class GalleryThumbnails {
  public:
    // `manager` is borrowed; it outlives this object.
    explicit GalleryThumbnails(DuiLib::CPaintManagerUI* manager);
    // Waits for the one file that is being read.
    ~GalleryThumbnails();
    GalleryThumbnails(const GalleryThumbnails&) = delete;
    GalleryThumbnails& operator=(const GalleryThumbnails&) = delete;

    // From now on the file's picture stands under its path among the window's images; `control`, by its name, shows it.
    void Show(const std::wstring& path, const std::wstring& control);
    // The control's picture is dropped. Nothing happens for a control that shows none.
    void Forget(const std::wstring& control);

  private:
    struct State;
    std::shared_ptr<State> state_;  // shared with queued tasks
};
