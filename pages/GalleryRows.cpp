#include "pages/GalleryRows.h"

namespace {

constexpr int kEntriesPerRow = 5;
constexpr int kRowHeight = 48;
constexpr int kMargin = 16;
constexpr int kTitleHeight = 60;

}  // namespace

std::optional<GalleryHeight> GalleryHeightFor(int entryCount) {
    const int inLastRow = entryCount % kEntriesPerRow;
    if (inLastRow > 1) {
        return std::nullopt;
    }
    const int rows = entryCount / kEntriesPerRow + (inLastRow == 1 ? 1 : 0);
    const int group = rows * kRowHeight + kMargin;
    return GalleryHeight{group, group + kTitleHeight};
}
