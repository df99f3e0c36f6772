// How long a window of the program's size and richness takes to paint: whole, one hovered button, one slider step, a
// new arrangement, and another theme. Prints milliseconds: the median, and the best for machines that are busy with
// something else.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <functional>
#include <random>
#include <string>
#include <vector>

#include "DuiLib/SliderUI.h"
#include "benchmarks/support/Measuring.h"
#include "tests/support/FakeLook.h"
#include "tests/windows/duilib/Rendering.h"

namespace DuiLib::Test {
namespace {

constexpr int kRounds = 200;

// "median (best)"
std::string MillisecondsOf(const std::function<void()>& work) {
    std::vector<double> times;
    for (int i = 0; i < kRounds; ++i) {
        const auto start = std::chrono::steady_clock::now();
        work();
        times.push_back(std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count());
    }
    std::sort(times.begin(), times.end());
    char text[64]{};
    std::snprintf(text, sizeof(text), "%.3f (%.3f)", times[kRounds / 2], times[0]);
    return text;
}

// A picture that is not of one colour, with soft edges.
void WritePhoto(const std::wstring& name, Size size) {
    std::mt19937 random(static_cast<unsigned>(size.cx));
    std::vector<std::uint32_t> pixels;
    for (int i = 0; i < size.cx * size.cy; ++i) {
        pixels.push_back(0xFF000000u | (random() & 0xFFFFFF));
    }
    WriteImage(name, size, pixels);
}

std::string Layout() {
    std::string layout =
        R"(<Window size="960,680" roundcorner="12" bkcolor="window"><Font id="0" size="14" default="true"/>
        <Default name="Option" value="width='52' height='32' borderround='6' bordersize='1' bordercolor='#20000000' group='g'"/>
        <VerticalLayout inset="40,20,40,20" childpadding="8" bkimage="drawable/back.png">
        <HorizontalLayout height="40"><Label text="Camera effects"/><Button width="32" text="-"/><Button width="32" text="x"/>
        </HorizontalLayout><HorizontalLayout childpadding="16"><VerticalLayout childpadding="8">)";
    for (int row = 0; row < 6; ++row) {
        layout += R"(<HorizontalLayout height="56" bkcolor="#FFFFFFFF" borderround="12" inset="16,8,16,8">
            <VerticalLayout><Label text="A feature of the camera"/><Label textcolor="#FF808080" text="What the feature does for you"/>
            </VerticalLayout><Button width="36" height="20" normalimage="drawable/switch.png" name="switch)" +
                  std::to_string(row) + R"("/></HorizontalLayout>)";
    }
    layout +=
        R"(</VerticalLayout><VerticalLayout childpadding="8" bkcolor="#FFFFFFFF" borderround="12" inset="16,16,16,16">
        <TileLayout itemsize="60,40" height="200">)";
    for (int i = 0; i < 30; ++i) {
        layout += "<Option name=\"o" + std::to_string(i) + "\" normalimage=\"drawable/photo" + std::to_string(i % 15) +
                  ".png\" hotbkcolor=\"#40000000\"/>";
    }
    layout += "</TileLayout>";
    for (int i = 0; i < 4; ++i) {
        layout += "<HorizontalLayout height=\"40\"><Label width=\"80\" text=\"Slider\"/><Slider name=\"s" +
                  std::to_string(i) +
                  R"(" barheight="4" barcolor="#FFD0D4DA" forecolor="#FF0A59F7" value="40"/></HorizontalLayout>)";
    }
    return layout +
           R"(<Text showhtml="true" wordwrap="true" text="Read &lt;a href='x'>more&lt;/a> about &lt;b>effects&lt;/b>
        that need a camera with a driver of its own."/></VerticalLayout></HorizontalLayout></VerticalLayout></Window>)";
}

void Measure() {
    WritePhoto(L"drawable\\back.png", {960, 680});
    WritePhoto(L"drawable\\switch.png", {36, 20});
    // As in the settings window, one large picture and the controls have a dark look, and the photographs have none.
    WritePhoto(L"drawable-dark\\back.png", {960, 680});
    WritePhoto(L"drawable-dark\\switch.png", {36, 20});
    for (int i = 0; i < 15; ++i) {
        WritePhoto(L"drawable\\photo" + std::to_wstring(i) + L".png", {100 + i, 80});
    }
    harness::FakeLook look;
    TestWindow window(Layout());
    CPaintManagerUI& manager = window.PaintManager();
    window.ShowWindow(true, false);
    for (const int dpi : {96, 144, 192}) {
        Render(window, dpi, L"bench");
        const auto repaint = [&] { UpdateWindow(window.GetHWND()); };
        PumpPending();
        repaint();
        const std::string whole = MillisecondsOf([&] {
            InvalidateRect(window.GetHWND(), nullptr, FALSE);
            manager.Invalidate({0, 0, 10000, 10000});
            repaint();
        });
        // As with a hand on the mouse: the pointer is on the window, and the system is not asked where it is.
        POINT inside{300, 200};
        ClientToScreen(window.GetHWND(), &inside);
        SetCursorPos(inside.x, inside.y);
        PumpPending();
        bool first = true;
        const Point one = window.CenterOf(L"o3"), other = window.CenterOf(L"o4");
        const std::string hover = MillisecondsOf([&] {
            first = !first;
            window.Mouse(WM_MOUSEMOVE, first ? one : other);
            repaint();
        });
        auto& slider = window.Find<CSliderUI>(L"s1");
        const std::string slide = MillisecondsOf([&] {
            slider.SetValue((slider.GetValue() + 7) % 101);
            repaint();
        });
        const std::string arrange = MillisecondsOf([&] {
            manager.NeedUpdate();
            manager.UpdateLayout();
        });
        const std::string theme = MillisecondsOf([&] {
            look.SetDark(look.appsUseLightTheme.value_or(1) == 1);
            harness::FakeLook::Tell(window.GetHWND());
            repaint();
        });
        std::printf("%3d %%: whole %s, hover %s, slider step %s, arranging %s, theme %s ms\n", dpi * 100 / 96,
                    whole.c_str(), hover.c_str(), slide.c_str(), arrange.c_str(), theme.c_str());
    }
}

}  // namespace
}  // namespace DuiLib::Test

int main() {
    return benchmark::Run(DuiLib::Test::Measure);
}
