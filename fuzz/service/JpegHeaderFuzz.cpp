// What the program itself reads of a picture file's beginning: the camera's notes and the embedded thumbnail.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "fuzz/support/Require.h"
#include "service/pictures/ExifOrientation.h"
#include "service/pictures/JpegThumbnail.h"

namespace ExifOrientation = pictures::ExifOrientation;
namespace JpegThumbnail = pictures::JpegThumbnail;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const JpegThumbnail::Bytes file(data, size);
    const int orientation = ExifOrientation::Read(file);
    REQUIRE(orientation >= 1 && orientation <= 8);

    const JpegThumbnail::Bytes found = JpegThumbnail::Find(file);
    REQUIRE(found.empty() || (found.data() >= data && found.data() + found.size() <= data + size));

    // Whatever the file is, a thumbnail that went in comes out, or one that was there before it does, or the file stays
    // as it was.
    const std::vector<std::uint8_t> small{1, 2, 3};
    const std::vector<std::uint8_t> with = JpegThumbnail::Embed(file, small);
    const JpegThumbnail::Bytes again = JpegThumbnail::Find(with);
    if (with.size() == size) {
        REQUIRE(std::equal(with.begin(), with.end(), data));
        return 0;
    }
    REQUIRE(with.size() == size + 13);
    REQUIRE(std::equal(again.begin(), again.end(), small.begin(), small.end()) ||
            (!found.empty() && std::equal(again.begin(), again.end(), found.begin(), found.end())));
    return 0;
}
