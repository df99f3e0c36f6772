#include "service/pictures/VideoCover.h"

#include <memory>
#include <utility>

#include "preview/VideoReader.h"
#include "service/pictures/PaintingWait.h"
#include "service/pictures/ShellPicture.h"

namespace pictures {

namespace {

// A gallery's cell has 52 x 32 units, three pixels a unit at most.
constexpr SIZE kCoverPx = {480, 270};

}  // namespace

suite::GdiBitmap LoadVideoCover(const std::wstring& path) {
    const auto cover = std::make_shared<suite::GdiBitmap>();
    const bool loaded = RunWhilePainting(
        [path, cover] {
            *cover = ExtractShellPicture(path, &kCoverPx);
            VideoReader reader;
            if (!*cover && reader.Open(path)) {
                *cover =
                    suite::GdiBitmap(reader.ReadCover(static_cast<UINT>(kCoverPx.cx), static_cast<UINT>(kCoverPx.cy)));
            }
            return static_cast<bool>(*cover);
        },
        kVideoPatience);
    return loaded ? std::move(*cover) : suite::GdiBitmap();
}

}  // namespace pictures
