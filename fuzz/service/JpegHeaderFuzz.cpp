// What the program itself reads of a picture file's beginning: the camera's notes and the embedded thumbnail.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "fuzz/support/Require.h"
#include "service/pictures/ExifOrientation.h"
#include "service/pictures/JpegThumbnail.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const JpegThumbnail::Bytes file(data, size);
    const int orientation = ExifOrientation::Read(file);
    REQUIRE(orientation >= 1 && orientation <= 8);

    const JpegThumbnail::Bytes found = JpegThumbnail::Find(file);
    REQUIRE(found.empty() || (found.data() >= data && found.data() + found.size() <= data + size));

    // Whatever the file is, a thumbnail that went in comes out, or the file stays as it was.
    const std::vector<std::uint8_t> small{1, 2, 3};
    const std::vector<std::uint8_t> with = JpegThumbnail::Embed(file, small);
    const JpegThumbnail::Bytes again = JpegThumbnail::Find(with);
    REQUIRE(with.size() == size || with.size() == size + 13);
    REQUIRE(with.size() == size || !again.empty());
    return 0;
}
