#pragma once
// Builds a cell of the gallery for one of the user's own backgrounds. Thread: UI thread.
#include <memory>
#include <string>

#include "DuiLib/ControlUI.h"

// Picture, option, badge (videos only) and delete button, named after the item as CustomItemNames has it. The picture
// is the image that stands under the path.
std::unique_ptr<DuiLib::CControlUI> MakeGalleryCell(const std::wstring& itemName, const std::wstring& thumbnailPath,
                                                    bool isVideo);
