#include "service/pictures/JpegThumbnail.h"

#include <gmock/gmock.h>

namespace JpegThumbnail = pictures::JpegThumbnail;

namespace {

using testing::IsEmpty;
using Bytes = std::vector<std::uint8_t>;

const Bytes kFile{0xFF, 0xD8, 0xFF, 0xE0, 0, 4, 'J', 'F', 0xFF, 0xDA, 0, 2, 7};
const Bytes kSmall{0xFF, 0xD8, 1, 2, 3};

TEST(JpegThumbnail, WhatWasEmbeddedIsFound) {
    const Bytes file = JpegThumbnail::Embed(kFile, kSmall);
    EXPECT_THAT(JpegThumbnail::Find(file), testing::ElementsAreArray(kSmall));
    // Behind the first segment, and nothing else has changed.
    EXPECT_EQ(file.size(), kFile.size() + 10 + kSmall.size());
    EXPECT_TRUE(std::equal(kFile.begin(), kFile.begin() + 8, file.begin()));
    EXPECT_TRUE(std::equal(kFile.begin() + 8, kFile.end(), file.end() - 5));
}

TEST(JpegThumbnail, AFileWithoutASegmentGetsOneAtItsBeginning) {
    const Bytes file = JpegThumbnail::Embed(Bytes{0xFF, 0xD8, 0xFF, 0xDA}, kSmall);
    EXPECT_THAT(JpegThumbnail::Find(file), testing::ElementsAreArray(kSmall));
}

TEST(JpegThumbnail, WhatDoesNotFitIsLeftOut) {
    EXPECT_EQ(JpegThumbnail::Embed(kFile, Bytes(0xFFFF)), kFile);
    EXPECT_THAT(JpegThumbnail::Find(JpegThumbnail::Embed(kFile, Bytes(0xFFFF - 8, 5))), testing::SizeIs(0xFFFF - 8));
    EXPECT_EQ(JpegThumbnail::Embed(Bytes{'B', 'M'}, kSmall), (Bytes{'B', 'M'}));
    EXPECT_THAT(JpegThumbnail::Embed({}, kSmall), IsEmpty());
}

TEST(JpegThumbnail, APartOfOneIsNone) {
    const Bytes file = JpegThumbnail::Embed(kFile, kSmall);
    for (std::size_t size = 0; size < 8 + 10 + kSmall.size(); ++size)
        EXPECT_THAT(JpegThumbnail::Find({file.data(), size}), IsEmpty()) << size;
    EXPECT_THAT(JpegThumbnail::Find(kFile), IsEmpty());
}

// A segment that holds no thumbnail, or ends before its name, is passed over.
TEST(JpegThumbnail, AnEmptyOneHidesNoOther) {
    const Bytes empty{0xFF, 0xD8, 0xFF, 0xE0, 0, 8, 'J', 'F', 'X', 'X', 0, 0x10};
    EXPECT_THAT(JpegThumbnail::Find(empty), IsEmpty());
    EXPECT_THAT(JpegThumbnail::Find(JpegThumbnail::Embed(empty, kSmall)), testing::ElementsAreArray(kSmall));
    const Bytes shortened{0xFF, 0xD8, 0xFF, 0xE0, 0, 7, 'J', 'F', 'X', 'X', 0, 0xFF, 0xDA};
    EXPECT_THAT(JpegThumbnail::Find(JpegThumbnail::Embed(shortened, kSmall)), testing::ElementsAreArray(kSmall));
}

}  // namespace
