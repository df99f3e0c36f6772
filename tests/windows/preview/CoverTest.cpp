// Covers of videos whose decoder delivers what decoders do: another size than they said, lines that are no picture,
// errors and ends.
#include <mfapi.h>
#include <mferror.h>

#include <cstdlib>

#include "preview/VideoReader.h"
#include "suite/common/GdiObject.h"
#include "tests/support/doubles/FileReaderDouble.h"
#include "tests/support/doubles/Violations.h"
#include "tests/windows/preview/PreviewSupport.h"

namespace preview_test {
namespace {

using doubles::CameraType;
using doubles::FileFrame;
using doubles::Files;
using doubles::Violations;
using testing::IsEmpty;

constexpr std::uint8_t kBright = 200;
constexpr std::uint8_t kDark = 16;

class CoverTest : public PreviewTest {
  protected:
    void SetUp() override {
        Files::Script() = {};
        Files::Script().delivers = Yuy2(64, 48);
        Violations::Take();
    }
    void TearDown() override { EXPECT_THAT(Violations::Take(), IsEmpty()); }

    static CameraType Yuy2(std::uint32_t width, std::uint32_t height) {
        CameraType type;
        type.subtype = MFVideoFormat_YUY2;
        type.width = width;
        type.height = height;
        return type;
    }
    // Grey: `luma` for each of the frame's places.
    static FileFrame Frame(std::uint32_t width, std::uint32_t height,
                           const std::function<std::uint8_t(std::uint32_t x, std::uint32_t y)>& luma) {
        FileFrame frame;
        for (std::uint32_t y = 0; y < height; ++y) {
            for (std::uint32_t x = 0; x < width; ++x) {
                frame.bytes.push_back(luma(x, y));
                frame.bytes.push_back(128);
            }
        }
        return frame;
    }
    static FileFrame Plain(std::uint32_t width, std::uint32_t height, std::uint8_t luma) {
        return Frame(width, height, [luma](std::uint32_t, std::uint32_t) { return luma; });
    }

    // The cover's pixels, and its size.
    struct Cover {
        LONG width = 0;
        LONG height = 0;
        std::vector<std::uint32_t> pixels;
        std::uint32_t At(LONG x, LONG y) const { return pixels.at(static_cast<std::size_t>(y * width + x)) & 0xFF; }
    };
    Cover Read(UINT maxWidth = 1000, UINT maxHeight = 1000) {
        EXPECT_TRUE(reader_.Open(L"any.mp4"));
        const suite::GdiBitmap bitmap(reader_.ReadCover(maxWidth, maxHeight));
        Cover cover;
        DIBSECTION section = {};
        if (bitmap && GetObjectW(bitmap.Get(), sizeof section, &section) == sizeof section) {
            cover.width = section.dsBm.bmWidth;
            cover.height = std::abs(section.dsBm.bmHeight);
            const auto* first = static_cast<const std::uint32_t*>(section.dsBm.bmBits);
            cover.pixels.assign(first, first + cover.width * cover.height);
        }
        return cover;
    }

    VideoReader reader_;
};

TEST_F(CoverTest, TheFirstFrameThatIsNotDarkIsTheCover) {
    Files::Script().frames = {Plain(64, 48, kDark), Plain(64, 48, kDark), Plain(64, 48, kBright),
                              Plain(64, 48, kBright)};
    const Cover cover = Read();
    EXPECT_EQ(cover.width, 64);
    EXPECT_EQ(cover.height, 48);
    EXPECT_GT(cover.At(5, 5), 100U);
    EXPECT_EQ(Files::Reads(), 3);
}

TEST_F(CoverTest, ADecoderThatChangesItsTypeShearsNothing) {
    FileFrame changed = Frame(96, 56, [](std::uint32_t x, std::uint32_t) { return x < 48 ? kBright : kDark; });
    changed.newType = Yuy2(96, 56);
    changed.flags = MF_SOURCE_READERF_CURRENTMEDIATYPECHANGED;
    Files::Script().frames = {Plain(64, 48, kDark), changed};
    const Cover cover = Read();
    ASSERT_EQ(cover.width, 96);
    ASSERT_EQ(cover.height, 56);
    for (LONG y = 0; y < 56; ++y) {
        ASSERT_GT(cover.At(47, y), 100U) << y;
        ASSERT_LT(cover.At(48, y), 20U) << y;
    }
    UINT width = 0, height = 0;
    EXPECT_TRUE(reader_.GetFrameSize(&width, &height));
    EXPECT_EQ(width, 96U);
    EXPECT_EQ(height, 56U);
}

TEST_F(CoverTest, AChangeThatCannotBeAskedForEndsTheReading) {
    FileFrame changed = Plain(96, 56, kBright);
    changed.flags = MF_SOURCE_READERF_CURRENTMEDIATYPECHANGED;
    Files::Script().frames = {Plain(64, 48, kDark), changed, Plain(64, 48, kBright)};
    Files::Script().currentTypeLater = E_FAIL;
    const Cover cover = Read();
    EXPECT_EQ(cover.width, 64) << "the last one that was understood";
    EXPECT_EQ(Files::Reads(), 2);
    UINT width = 0, height = 0;
    EXPECT_FALSE(reader_.GetFrameSize(&width, &height));
}

// 1080 lines of 1088, and columns on the left: what lies outside is dark here.
TEST_F(CoverTest, TheApertureIsThePicture) {
    CameraType type = Yuy2(64, 56);
    type.aperture = RECT{3, 2, 61, 50};
    Files::Script().delivers = type;
    Files::Script().frames = {Frame(64, 56, [](std::uint32_t x, std::uint32_t y) {
        return x >= 2 && x < 61 && y >= 2 && y < 50 ? kBright : kDark;
    })};
    const Cover cover = Read();
    ASSERT_EQ(cover.width, 59) << "from the even column before, which shares its colour";
    ASSERT_EQ(cover.height, 48);
    for (LONG y = 0; y < cover.height; ++y) {
        for (LONG x = 0; x < cover.width; ++x) {
            ASSERT_GT(cover.At(x, y), 100U) << x << "," << y;
        }
    }
}

TEST_F(CoverTest, IsAsManyWholeTimesSmallerAsItTakes) {
    Files::Script().frames = {Plain(64, 48, kBright)};
    const Cover cover = Read(30, 30);
    EXPECT_EQ(cover.width, 21);
    EXPECT_EQ(cover.height, 16);
}

TEST_F(CoverTest, NothingIsReadAfterAnErrorOrTheEnd) {
    for (const DWORD flag : {MF_SOURCE_READERF_ERROR, MF_SOURCE_READERF_ENDOFSTREAM}) {
        FileFrame last = Plain(64, 48, kDark);
        last.flags = flag;
        Files::Script().frames = {Plain(64, 48, kDark), last, Plain(64, 48, kBright)};
        const Cover cover = Read();
        EXPECT_EQ(cover.width, 64) << "better a dark one than none";
        EXPECT_LT(cover.At(0, 0), 20U);
        EXPECT_EQ(Files::Reads(), 2);
    }
    FileFrame failed;
    failed.result = E_FAIL;
    Files::Script().frames = {failed, Plain(64, 48, kBright)};
    EXPECT_EQ(Read().width, 0);
    EXPECT_EQ(Files::Reads(), 1);
}

TEST_F(CoverTest, AFileThatNeverEndsIsReadForAWhileOnly) {
    Files::Script().frames.assign(1000, FileFrame{});
    EXPECT_EQ(Read().width, 0);
    EXPECT_EQ(Files::Reads(), 90) << "reads without a frame";
    Files::Script().frames.assign(1000, Plain(8, 8, kDark));
    Files::Script().delivers = Yuy2(8, 8);
    EXPECT_EQ(Read().width, 8);
    EXPECT_EQ(Files::Reads(), 30) << "dark frames";
}

TEST_F(CoverTest, AShortBufferIsNoCover) {
    FileFrame cut = Plain(64, 48, kBright);
    cut.bytes.pop_back();
    Files::Script().frames = {cut};
    EXPECT_EQ(Read().width, 0);
    Files::Script().delivers = Yuy2(0, 48);
    EXPECT_EQ(Read().width, 0);
}

TEST_F(CoverTest, ADecoderThatDoesNotKnowYuy2OpensNothing) {
    Files::Script().acceptsYuy2 = false;
    EXPECT_FALSE(reader_.Open(L"phone.mov"));
}

}  // namespace
}  // namespace preview_test
