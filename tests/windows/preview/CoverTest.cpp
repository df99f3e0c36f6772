// Covers of videos whose decoder delivers what decoders do: another size than they said, lines that are no picture,
// errors and ends.
#include <mfapi.h>
#include <mferror.h>

#include <array>
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
    void TearDown() override {
        reader_.Close();
        EXPECT_EQ(Files::Held(), 0);
        EXPECT_THAT(Violations::Take(), IsEmpty());
    }

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
            for (std::uint32_t x = 0; x < (width + 1) / 2 * 2; ++x) {
                frame.bytes.push_back(luma(x, y));
                frame.bytes.push_back(128);
            }
        }
        return frame;
    }
    // The grey that such a luma becomes.
    static std::uint32_t Grey(std::uint32_t luma) { return (298 * (luma - 16) + 128) >> 8; }
    // Of one colour.
    static FileFrame Coloured(std::uint32_t width, std::uint32_t height, std::array<std::uint8_t, 3> yCbCr) {
        FileFrame frame;
        for (std::uint32_t i = 0; i < width * height; i += 2) {
            frame.bytes.insert(frame.bytes.end(), {yCbCr[0], yCbCr[1], yCbCr[0], yCbCr[2]});
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

TEST_F(CoverTest, TheSizeThatIsAskedForMayBeReached) {
    Files::Script().frames = {Plain(64, 48, kBright)};
    struct Asked {
        UINT maxWidth, maxHeight;
        LONG width, height;
    };
    for (const Asked& asked : {Asked{64, 48, 64, 48}, Asked{63, 48, 32, 24}, Asked{64, 47, 32, 24},
                               Asked{32, 24, 32, 24}, Asked{64, 12, 16, 12}, Asked{16, 48, 16, 12}}) {
        SCOPED_TRACE(testing::Message() << asked.maxWidth << "x" << asked.maxHeight);
        const Cover cover = Read(asked.maxWidth, asked.maxHeight);
        EXPECT_EQ(cover.width, asked.width);
        EXPECT_EQ(cover.height, asked.height);
    }
}

TEST_F(CoverTest, APixelIsTheMeanOfItsBlock) {
    const auto luma = [](std::uint32_t x, std::uint32_t y) { return static_cast<std::uint8_t>(40 + 3 * x + 25 * y); };
    const auto mean = [&](std::uint32_t left, std::uint32_t top, std::uint32_t columns, std::uint32_t rows) {
        std::uint32_t sum = 0;
        for (std::uint32_t i = 0; i < columns * rows; ++i) {
            sum += Grey(luma(left + i % columns, top + i / columns));
        }
        return sum / (columns * rows);
    };
    // What is left over at the right and below belongs to no block.
    for (const auto& [width, height, times] :
         {std::array{6U, 4U, 2U}, std::array{7U, 5U, 2U}, std::array{7U, 6U, 3U}}) {
        SCOPED_TRACE(testing::Message() << width << "x" << height);
        Files::Script().delivers = Yuy2(width, height);
        Files::Script().frames = {Frame(width, height, luma)};
        const Cover cover = Read((width + times - 1) / times, (height + times - 1) / times);
        ASSERT_EQ(cover.width, static_cast<LONG>(width / times));
        ASSERT_EQ(cover.height, static_cast<LONG>(height / times));
        for (LONG y = 0; y < cover.height; ++y) {
            for (LONG x = 0; x < cover.width; ++x) {
                EXPECT_EQ(cover.At(x, y), mean(static_cast<std::uint32_t>(x) * times,
                                               static_cast<std::uint32_t>(y) * times, times, times))
                    << x << "," << y;
            }
        }
    }
    // Flatter and narrower than a block.
    for (const auto& [width, height, maxWidth, maxHeight] :
         {std::array{2U, 96U, 100U, 10U}, std::array{96U, 2U, 10U, 100U}}) {
        const bool narrow = width == 2;
        Files::Script().delivers = Yuy2(width, height);
        Files::Script().frames = {Frame(width, height, [narrow](std::uint32_t x, std::uint32_t y) {
            return (narrow ? x : y) == 0 ? kBright : kDark;
        })};
        const Cover cover = Read(maxWidth, maxHeight);
        EXPECT_EQ(cover.width, narrow ? 1 : 9);
        EXPECT_EQ(cover.height, narrow ? 9 : 1);
        EXPECT_THAT(cover.pixels, testing::Each(Grey(kBright) / 2 * 0x010101));
    }
}

TEST_F(CoverTest, ColoursStayWhatTheyAre) {
    struct Colour {
        std::array<std::uint8_t, 3> yCbCr;
        std::uint32_t pixel;
    };
    for (const Colour& colour :
         {Colour{{81, 90, 240}, 0xFF0000}, Colour{{145, 54, 34}, 0x00FF01}, Colour{{41, 240, 110}, 0x0000FF}}) {
        Files::Script().frames = {Coloured(64, 48, colour.yCbCr)};
        EXPECT_THAT(Read().pixels, testing::Each(colour.pixel));
        EXPECT_THAT(Read(20, 20).pixels, testing::Each(colour.pixel));
    }
}

TEST_F(CoverTest, IsUpright) {
    Files::Script().frames = {Frame(64, 48, [](std::uint32_t, std::uint32_t y) { return y < 24 ? kBright : kDark; })};
    ASSERT_TRUE(reader_.Open(L"any.mp4"));
    const suite::GdiBitmap bitmap(reader_.ReadCover(1000, 1000));
    ASSERT_TRUE(bitmap);
    HDC memory = CreateCompatibleDC(nullptr);
    HGDIOBJ former = SelectObject(memory, bitmap.Get());
    EXPECT_GT(GetGValue(GetPixel(memory, 5, 23)), 100);
    EXPECT_LT(GetGValue(GetPixel(memory, 5, 24)), 20);
    SelectObject(memory, former);
    DeleteDC(memory);
}

// A mean of 24 of 255 is dark, of 25 is not; green counts twice.
TEST_F(CoverTest, WhatCountsAsDark) {
    const auto isDark = [&](const FileFrame& frame) {
        Files::Script().frames = {frame, Plain(64, 48, kBright)};
        Read();
        return Files::Reads() == 2;
    };
    EXPECT_TRUE(isDark(Plain(64, 48, 37))) << "24";
    EXPECT_FALSE(isDark(Frame(64, 48, [](std::uint32_t x, std::uint32_t) {
        return static_cast<std::uint8_t>(x % 2 == 0 ? 37 : 38);  // 24 and 26
    })));
    EXPECT_TRUE(isDark(Coloured(64, 48, {16, 176, 128}))) << "blue 97";
    EXPECT_FALSE(isDark(Coloured(64, 48, {16, 178, 128}))) << "blue 101";
    EXPECT_TRUE(isDark(Coloured(64, 48, {16, 128, 190}))) << "red 99";
    EXPECT_FALSE(isDark(Coloured(64, 48, {16, 128, 191}))) << "red 101";
    EXPECT_TRUE(isDark(Coloured(64, 48, {16, 87, 87}))) << "green 49";
    EXPECT_FALSE(isDark(Coloured(64, 48, {16, 86, 86}))) << "green 51";
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
    Files::Script().frames = {Plain(64, 48, kDark), cut};
    EXPECT_EQ(Read().width, 64) << "the one before";
}

TEST_F(CoverTest, SizesThatNoFrameHasAreNone) {
    for (const auto& [width, height, cover] :
         {std::array{0U, 48U, 0U}, std::array{64U, 0U, 0U}, std::array{0x8000U, 1U, 992U}, std::array{0x8001U, 1U, 0U},
          std::array{1U, 0x8000U, 1U}, std::array{1U, 0x8001U, 0U}}) {
        SCOPED_TRACE(testing::Message() << width << "x" << height);
        Files::Script().delivers = Yuy2(width, height);
        Files::Script().frames = {Plain(std::max(width, 1U), std::max(height, 1U), kBright)};
        EXPECT_EQ(Read().width, static_cast<LONG>(cover));
    }
}

TEST_F(CoverTest, ABufferThatCannotBeLockedIsNoFrame) {
    FileFrame locked = Plain(64, 48, kBright);
    locked.lock = E_ACCESSDENIED;
    Files::Script().frames = {locked, Plain(64, 48, kBright)};
    EXPECT_EQ(Read().width, 64);
    EXPECT_EQ(Files::Reads(), 2);
}

TEST_F(CoverTest, ADecoderThatDoesNotKnowYuy2OpensNothing) {
    Files::Script().acceptsYuy2 = false;
    EXPECT_FALSE(reader_.Open(L"phone.mov"));
    EXPECT_EQ(Files::Held(), 0) << "nothing stays open";
    EXPECT_EQ(reader_.ReadCover(10, 10), nullptr);
}

TEST_F(CoverTest, AVideoWithoutASizeOpensNothing) {
    Files::Script().tellsSize = false;
    EXPECT_FALSE(reader_.Open(L"any.mp4"));
    EXPECT_EQ(Files::Held(), 0) << "nothing stays open";
}

TEST_F(CoverTest, OpeningAgainClosesWhatWasOpen) {
    EXPECT_TRUE(reader_.Open(L"any.mp4"));
    EXPECT_TRUE(reader_.Open(L"other.mp4"));
    UINT width = 0, height = 0;
    EXPECT_TRUE(reader_.GetFrameSize(&width, &height));
    EXPECT_EQ(Files::Held(), 2) << "one reader and its type";
    reader_.Close();
    EXPECT_FALSE(reader_.GetFrameSize(&width, &height));
    EXPECT_EQ(Files::Held(), 0);
    VideoReader().Close();
    EXPECT_TRUE(VideoReader().Open(L"any.mp4"));
    EXPECT_EQ(Files::Held(), 0) << "the end closes it";
}

TEST_F(CoverTest, OpeningStartsMediaFoundation) {
    const auto isStarted = [] {
        DWORD queue = 0;
        const bool made = SUCCEEDED(MFAllocateWorkQueue(&queue));
        if (made) {
            MFUnlockWorkQueue(queue);
        }
        return made;
    };
    int starts = 0;
    for (; isStarted() && starts < 10'000; ++starts) {
        MFShutdown();
    }
    ASSERT_FALSE(isStarted());
    EXPECT_TRUE(reader_.Open(L"any.mp4"));
    EXPECT_TRUE(isStarted());
    for (; starts > 1; --starts) {
        MFStartup(MF_VERSION, MFSTARTUP_FULL);
    }
}

}  // namespace
}  // namespace preview_test
