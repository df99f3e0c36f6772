// Painting in pieces gives the same picture as painting at once, whatever control changes.
#include <random>

#include "DuiLib/OptionUI.h"
#include "DuiLib/SliderUI.h"
#include "Rendering.h"

namespace DuiLib::Test {
namespace {

// What the window's own pixels are after its WM_PAINT messages.
Picture Screen(TestWindow& window) {
    PumpUntil([&] { return GetUpdateRect(window.GetHWND(), nullptr, FALSE) == FALSE; });
    RECT client{};
    GetClientRect(window.GetHWND(), &client);
    const Size size{static_cast<int>(client.right), static_cast<int>(client.bottom)};
    BITMAPINFO info{};
    info.bmiHeader = {sizeof(BITMAPINFOHEADER), size.cx, -size.cy, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
    void* bits = nullptr;
    const HDC dc = CreateCompatibleDC(nullptr);
    const HBITMAP bitmap = CreateDIBSection(dc, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
    const HGDIOBJ original = SelectObject(dc, bitmap);
    const HDC windowDc = GetDC(window.GetHWND());
    BitBlt(dc, 0, 0, size.cx, size.cy, windowDc, 0, 0, SRCCOPY);
    GdiFlush();
    const auto* pixels = static_cast<const std::uint32_t*>(bits);
    Picture picture{size, {pixels, pixels + static_cast<size_t>(size.cx) * static_cast<size_t>(size.cy)}};
    ReleaseDC(window.GetHWND(), windowDc);
    SelectObject(dc, original);
    DeleteObject(bitmap);
    DeleteDC(dc);
    return picture;
}

TEST(Painting, PiecesMakeTheWholePicture) {
    TestWindow window(
        R"(<Window size="300,260" bkcolor="#FFF0F0F0" bordercolor="#FF808080"><VerticalLayout inset="10,10,10,10"
        childpadding="4" borderround="9" bkcolor="#80FFFFFF"><Button name="b" height="30" bkcolor="#400000FF"
        hotbkcolor="#600000FF" borderround="15" text="Button"/><Option name="o" height="30" text="Option"
        selectedbkcolor="#8000FF00" borderround="6"/><Slider name="s" height="24" barheight="4" barcolor="#FFC0C0C0"
        forecolor="#FF0000FF"/><Progress name="p" height="10" barcolor="#FFC0C0C0" forecolor="#FF00A000"/>
        <Text name="t" showhtml="true" wordwrap="true" text="Some &lt;a href='x'>link&lt;/a> &lt;i>in&lt;/i> a text"/>
        </VerticalLayout></Window>)");
    window.ShowWindow(true, false);
    std::mt19937 random(1);
    const auto draw = [&](int limit) { return static_cast<int>(random() % static_cast<unsigned>(limit)); };
    for (int step = 0; step < 60; ++step) {
        switch (draw(6)) {
            case 0:
                window.Find<CSliderUI>(L"s").SetValue(draw(101));
                break;
            case 1:
                window.Find<CProgressUI>(L"p").SetValue(draw(101));
                break;
            case 2:
                window.Find<COptionUI>(L"o").SetSelected(draw(2) == 1);
                break;
            case 3:
                window.Find(L"t").SetText(draw(2) == 1 ? L"<b>bold</b> and <a href='y'>link</a>" : L"short");
                break;
            case 4:
                window.Find(L"b").SetVisible(draw(2) == 1);
                break;
            default:
                window.Mouse(WM_MOUSEMOVE, {draw(300), draw(260)});
                break;
        }
        const Picture pieces = Screen(window);
        window.PaintManager().Invalidate({0, 0, pieces.sizePx.cx, pieces.sizePx.cy});
        const Picture whole = Screen(window);
        for (size_t i = 0; i < whole.pixels.size(); ++i) {
            ASSERT_EQ(pieces.pixels[i] & 0xFFFFFF, whole.pixels[i] & 0xFFFFFF)
                << "step " << step << " at " << i % 300 << "," << i / 300;
        }
    }
}

}  // namespace
}  // namespace DuiLib::Test
