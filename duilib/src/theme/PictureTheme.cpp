#include "theme/PictureTheme.h"

#include <algorithm>

namespace DuiLib {
namespace {

// "drawable/a/checked.png": "checked".
std::wstring_view NameOf(std::wstring_view path) {
    const std::size_t folder = path.find_last_of(L"/\\");
    path = folder == std::wstring_view::npos ? path : path.substr(folder + 1);
    return path.substr(0, path.find_last_of(L'.'));
}

}  // namespace

MaskColors PictureTheme::ColorsOf(std::wstring_view path) const {
    const std::wstring_view name = NameOf(path);
    const auto mask = std::find_if(masks.begin(), masks.end(), [name](const Mask& each) { return each.name == name; });
    return mask == masks.end() ? otherMasks : mask->colors;
}

bool PictureTheme::IsUpright(std::wstring_view path) const {
    return std::find(upright.begin(), upright.end(), NameOf(path)) != upright.end();
}

}  // namespace DuiLib
