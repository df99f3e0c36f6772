// Images: renditions by DPI, parts, nine-grids, mirroring, registered bitmaps, and files that cannot be read.
#include "Rendering.h"

namespace DuiLib::Test {
namespace {

constexpr std::uint32_t kRed = 0xFFFF0000, kGreen = 0xFF00FF00, kBlue = 0xFF0000FF, kWhite = 0xFFFFFFFF;

std::vector<std::uint32_t> Plain(Size size, std::uint32_t color) {
    return std::vector<std::uint32_t>(static_cast<size_t>(size.cx) * static_cast<size_t>(size.cy), color);
}

// Left half of one colour, right half of another.
std::vector<std::uint32_t> Halves(Size size, std::uint32_t left, std::uint32_t right) {
    std::vector<std::uint32_t> pixels;
    for (int i = 0; i < size.cx * size.cy; ++i) {
        pixels.push_back(i % size.cx < size.cx / 2 ? left : right);
    }
    return pixels;
}

// A frame of `border` pixels around another colour.
std::vector<std::uint32_t> Framed(Size size, int border, std::uint32_t frame, std::uint32_t inside) {
    std::vector<std::uint32_t> pixels;
    for (int y = 0; y < size.cy; ++y) {
        for (int x = 0; x < size.cx; ++x) {
            const bool inner = x >= border && y >= border && x < size.cx - border && y < size.cy - border;
            pixels.push_back(inner ? inside : frame);
        }
    }
    return pixels;
}

class Images : public testing::TestWithParam<int> {
  protected:
    int Dpi() const { return GetParam(); }
    int Px(int dip) const { return DipToPx(dip, Dpi()); }
    // A window of 80 x 60 units, filled by a control with that background image.
    Picture Draw(const std::wstring& image, const std::wstring& name = L"") {
        window.Find(L"c").SetBkImage(image);
        return Render(window, Dpi(), name);
    }
    TestWindow window{
        R"(<Window size="80,60" bkcolor="#FFFFFFFF"><VerticalLayout><Control name="c"/></VerticalLayout></Window>)"};
};

INSTANTIATE_TEST_SUITE_P(Scales, Images, testing::Values(96, 120, 144, 192, 288), testing::PrintToStringParamName());

TEST_P(Images, TheRenditionFitsTheDpi) {
    WriteImage(L"drawable\\rendition\\a.png", {10, 10}, Plain({10, 10}, kRed));
    WriteImage(L"drawable-150\\rendition\\a.png", {15, 15}, Plain({15, 15}, kGreen));
    WriteImage(L"drawable-200\\rendition\\a.png", {20, 20}, Plain({20, 20}, kBlue));
    const std::uint32_t expected = Dpi() == 96 ? kRed : Dpi() <= 144 ? kGreen : kBlue;
    EXPECT_EQ(Draw(L"drawable/rendition/a.png").CenterOf({0, 0, Px(80), Px(60)}), expected);
    // Whatever the rendition, parts are given in units.
    WriteImage(L"drawable-200\\rendition\\c.png", {20, 20}, Halves({20, 20}, kRed, kBlue));
    EXPECT_EQ(Draw(L"file='drawable/rendition/c.png' source='5,0,10,10'").At({0, 0}), kBlue);
}

TEST_P(Images, WithoutALargeEnoughRenditionTheLargestIsTaken) {
    WriteImage(L"drawable\\few\\b.png", {10, 10}, Plain({10, 10}, kRed));
    WriteImage(L"drawable-125\\few\\b.png", {13, 13}, Plain({13, 13}, kGreen));
    EXPECT_EQ(Draw(L"file='drawable/few/b.png'").CenterOf({0, 0, Px(80), Px(60)}), Dpi() == 96 ? kRed : kGreen);
}

TEST_P(Images, APartGoesToItsPlace) {
    WriteImage(L"halves.png", {20, 10}, Halves({20, 10}, kRed, kBlue));
    const Picture picture = Draw(L"file='halves.png' source='10,0,20,10' dest='10,20,50,40'");
    const Rect place{Px(10), Px(20), Px(50), Px(40)};
    EXPECT_TRUE(picture.HasOnly(place, kBlue));
    EXPECT_EQ(picture.CountOf({0, 0, Px(80), Px(60)}, kWhite), Px(80) * Px(60) - place.Width() * place.Height());
}

TEST_P(Images, NineGridMarginsKeepTheirSize) {
    WriteImage(L"framed.png", {12, 12}, Framed({12, 12}, 4, kRed, kGreen));
    const Picture picture = Draw(L"file='framed.png' corner='4,4,4,4'", L"ninegrid");
    const Rect inside{Px(4), Px(4), Px(80) - Px(4), Px(60) - Px(4)};
    // At scales between the file's pixels the two colours mix where they meet.
    const int soft = Dpi() % 96 == 0 ? 0 : 2;
    const Rect safe = inside.Deflate({soft, soft, soft, soft});
    EXPECT_TRUE(picture.HasOnly(safe, kGreen));
    EXPECT_EQ(picture.At({0, 0}), kRed);
    EXPECT_TRUE(picture.HasOnly({0, 0, Px(4) - soft, Px(60)}, kRed));
    EXPECT_TRUE(picture.HasOnly({Px(80) - Px(4) + soft, 0, Px(80), Px(60)}, kRed));
}

TEST_P(Images, ReversedOnlyInRightToLeftLanguages) {
    WriteImage(L"halves.png", {20, 10}, Halves({20, 10}, kRed, kBlue));
    const Rect left{0, 0, Px(38), Px(60)};
    EXPECT_EQ(Draw(L"file='halves.png' reverse='true'").CenterOf(left), kRed);
    const Direction direction(true);
    EXPECT_EQ(Draw(L"file='halves.png'").CenterOf(left), kRed);
    EXPECT_EQ(Draw(L"file='halves.png' reverse='true'").CenterOf(left), kBlue);
}

TEST_P(Images, FadesAndBlends) {
    WriteImage(L"black.png", {4, 4}, Plain({4, 4}, 0xFF000000));
    WriteImage(L"glass.png", {4, 4}, Plain({4, 4}, 0x80FF0000));
    const Rect all{0, 0, Px(80), Px(60)};
    EXPECT_TRUE(Draw(L"file='black.png' fade='51'").HasOnly(all, 0xFFCCCCCC));
    const std::uint32_t glass = Draw(L"glass.png").CenterOf(all);
    EXPECT_NEAR((glass >> 8) & 0xFF, 127, 1);
    EXPECT_GE((glass >> 16) & 0xFF, 254u);
}

TEST_P(Images, RoundCornersCutTheImage) {
    WriteImage(L"red4.png", {4, 4}, Plain({4, 4}, kRed));
    window.Find(L"c").SetAttribute(L"borderround", L"10");
    const Picture picture = Draw(L"red4.png", L"round_image");
    EXPECT_EQ(picture.At({0, 0}), kWhite);
    EXPECT_EQ(picture.At({Px(10), 0}), kRed);
    EXPECT_EQ(picture.CenterOf({0, 0, Px(80), Px(60)}), kRed);
}

TEST_P(Images, LargeFilesAreScaledToo) {
    WriteImage(L"large.png", {1600, 1200}, Halves({1600, 1200}, kRed, kBlue));
    const Picture picture = Draw(L"large.png");
    EXPECT_EQ(picture.At({Px(38), Px(30)}), kRed);
    EXPECT_EQ(picture.At({Px(42), Px(30)}), kBlue);
    EXPECT_EQ(Draw(L"file='large.png' source='800,0,1600,1200'").At({0, 0}), kBlue);
}

TEST(ImageFailures, AreLoggedOnceAndDrawNothing) {
    ResourceFolder::Get().Write(L"text.png", "this is no picture");
    ResourceFolder::Get().Write(L"empty.png", "");
    WriteImage(L"cut.png", {200, 200}, Halves({200, 200}, kRed, kBlue));
    const std::filesystem::path cut = std::filesystem::path(ResourceFolder::Get().Path()) / "cut.png";
    std::filesystem::resize_file(cut, std::filesystem::file_size(cut) / 2);
    TestWindow window(
        R"(<Window size="80,60" bkcolor="#FFFFFFFF"><VerticalLayout><Control name="c"/></VerticalLayout></Window>)");
    for (const wchar_t* file :
         {L"text.png", L"empty.png", L"missing.png", L"drawable/missing.png", L"..\\..\\nothing"}) {
        LogWatch log;
        window.Find(L"c").SetBkImage(file);
        for (const int dpi : {96, 144, 96}) {
            const Picture picture = Render(window, dpi);
            EXPECT_EQ(picture.CountOf({0, 0, picture.sizePx.cx, picture.sizePx.cy}, kWhite),
                      picture.sizePx.cx * picture.sizePx.cy);
        }
        EXPECT_EQ(log.Failures().size(), 1u) << testing::PrintToString(std::wstring(file));
        EXPECT_TRUE(log.Has("cannot be read"));
        EXPECT_FALSE(window.PaintManager().HasImage(file));
    }
    harness::TestLog::Allow(testing::HasSubstr("cut.png cannot be read"));
    window.Find(L"c").SetBkImage(L"cut.png");
    Render(window, 96);  // whatever can be read of it, or nothing; no crash
}

class RegisteredImages : public testing::Test {
  protected:
    // A bitmap of one colour, for AddImage to take.
    static HBITMAP Bitmap(Size size, std::uint32_t color) {
        BITMAPINFO info{};
        info.bmiHeader = {sizeof(BITMAPINFOHEADER), size.cx, -size.cy, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
        void* bits = nullptr;
        const HBITMAP bitmap = CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
        std::fill_n(static_cast<std::uint32_t*>(bits), size.cx * size.cy, color);
        return bitmap;
    }
    std::uint32_t Look() { return Render(window, 96).CenterOf({0, 0, 80, 60}); }
    TestWindow window{
        R"(<Window size="80,60" bkcolor="#FFFFFFFF"><VerticalLayout><Control name="c"/></VerticalLayout></Window>)"};
};

TEST_F(RegisteredImages, StandForFiles) {
    CPaintManagerUI& manager = window.PaintManager();
    const std::wstring name = L"C:\\videos\\a film.mp4";
    EXPECT_FALSE(manager.HasImage(name));
    EXPECT_TRUE(manager.AddImage(name, Bitmap({8, 8}, 0x0000FF00), 64, 36, false, false));
    EXPECT_TRUE(manager.HasImage(name));
    window.Find(L"c").SetBkImage(L"file='C:\\videos\\a film.mp4' reverse='true'");
    EXPECT_EQ(Look(), kGreen);
    // They outlive a change of DPI, and another bitmap of the name takes their place.
    manager.SetDPI(192);
    EXPECT_EQ(Look(), kGreen);
    const HBITMAP shared = Bitmap({8, 8}, 0x000000FF);
    EXPECT_TRUE(manager.AddImage(name, shared, 64, 36, false, true));
    EXPECT_EQ(Look(), kBlue);
    EXPECT_EQ(GetObjectType(shared), static_cast<DWORD>(OBJ_BITMAP));
    DeleteObject(shared);
    EXPECT_EQ(Look(), kBlue);
    manager.RemoveImage(name);
    EXPECT_FALSE(manager.HasImage(name));
}

TEST_F(RegisteredImages, BadBitmapsAreRefused) {
    CPaintManagerUI& manager = window.PaintManager();
    EXPECT_FALSE(manager.AddImage(L"none", nullptr, 10, 10, false, false));
    EXPECT_FALSE(manager.HasImage(L"none"));
}

TEST_F(RegisteredImages, ARemovedFileIsReadAgain) {
    WriteImage(L"again.png", {4, 4}, Plain({4, 4}, kRed));
    window.Find(L"c").SetBkImage(L"again.png");
    EXPECT_EQ(Look(), kRed);
    EXPECT_TRUE(window.PaintManager().HasImage(L"again.png"));
    WriteImage(L"again.png", {4, 4}, Plain({4, 4}, kBlue));
    EXPECT_EQ(Look(), kRed);
    window.PaintManager().RemoveImage(L"AGAIN.PNG");
    EXPECT_EQ(Look(), kBlue);
}

TEST_F(RegisteredImages, AFileThatAppearsLaterIsSeenAfterRemoving) {
    harness::TestLog::Expect(testing::HasSubstr("later.png cannot be read"));
    window.Find(L"c").SetBkImage(L"later.png");
    EXPECT_EQ(Look(), kWhite);
    WriteImage(L"later.png", {4, 4}, Plain({4, 4}, kRed));
    EXPECT_EQ(Look(), kWhite);
    window.PaintManager().RemoveImage(L"later.png");
    EXPECT_EQ(Look(), kRed);
}

TEST_F(RegisteredImages, TheFileIsNotHeldOpen) {
    WriteImage(L"held.png", {4, 4}, Plain({4, 4}, kRed));
    window.Find(L"c").SetBkImage(L"held.png");
    EXPECT_EQ(Look(), kRed);
    EXPECT_TRUE(std::filesystem::remove(std::filesystem::path(ResourceFolder::Get().Path()) / "held.png"));
}

// Twelve mebipixels are kept: here three pictures of four. Which ones is seen once their files hold another colour.
TEST_F(RegisteredImages, ThePictureThatWasNotUsedForTheLongestTimeIsForgotten) {
    constexpr Size kFile{520, 520};  // of more pixels than are kept as they are read
    const auto write = [&](std::uint32_t color) {
        for (const wchar_t* const name : {L"keep_a.png", L"keep_b.png", L"keep_c.png", L"keep_d.png"}) {
            WriteImage(name, kFile, Plain(kFile, color));
        }
    };
    const auto look = [&](const std::wstring& name, const std::wstring& dest) {
        window.Find(L"c").SetBkImage(L"file='" + name + L"' dest='" + dest + L"'");
        return Look();
    };
    const std::wstring large = L"0,0,2048,2048";
    write(kRed);
    EXPECT_EQ(look(L"keep_a.png", large), kRed);
    EXPECT_EQ(look(L"keep_b.png", large), kRed);
    EXPECT_EQ(look(L"keep_c.png", large), kRed);
    write(kGreen);
    EXPECT_EQ(look(L"keep_a.png", large), kRed) << "all three are kept, and this one is used again";
    EXPECT_EQ(look(L"keep_d.png", L"0,0,80,60"), kGreen);
    EXPECT_EQ(look(L"keep_a.png", large), kRed);
    EXPECT_EQ(look(L"keep_c.png", large), kRed);
    EXPECT_EQ(look(L"keep_b.png", large), kGreen) << "it has made room";
}

}  // namespace
}  // namespace DuiLib::Test
