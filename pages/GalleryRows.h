#pragma once
// How high the background gallery is for a number of entries. Pure logic; heights in 96-DPI units.
#include <optional>

struct GalleryHeight {
    int groupMinHeight = 0;  // of the option group
    int sectionHeight = 0;   // of the group with its title
};

// Nothing when the height stays: it changes only when a row has just begun or has just closed, so that entries in the
// middle of a row do not move what is below.
std::optional<GalleryHeight> GalleryHeightFor(int entryCount);
