#include "service/pictures/VideoCover.h"

#include <memory>
#include <utility>

#include "preview/VideoReader.h"
#include "service/pictures/PaintingWait.h"
#include "service/pictures/ShellPicture.h"

namespace {

// A gallery's cell has 52 x 32 units, three pixels a unit at most.
constexpr SIZE kCoverPx = {480, 270};

}  // namespace

HBITMAP LoadVideoCover(const std::wstring& path) {
    struct Cover {
        HBITMAP bitmap = nullptr;
        ~Cover() { DeleteObject(bitmap); }
    };
    const auto cover = std::make_shared<Cover>();
    const bool loaded = RunWhilePainting(
        [path, cover] {
            cover->bitmap = ExtractShellPicture(path, &kCoverPx);
            VideoReader reader;
            if (!cover->bitmap && reader.Open(path)) {
                cover->bitmap = reader.ReadCover(static_cast<UINT>(kCoverPx.cx), static_cast<UINT>(kCoverPx.cy));
            }
            return cover->bitmap != nullptr;
        },
        kVideoPatience);
    return loaded ? std::exchange(cover->bitmap, nullptr) : nullptr;
}
