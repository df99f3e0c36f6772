// Measures what the user waits for in the open settings window: a click until its ping has reached the service, a
// change by another program until the switch is painted, a click until the other page is painted, and another theme
// until it is painted.
#include <windows.h>

#include <chrono>
#include <stdexcept>

#include "benchmarks/support/Measuring.h"
#include "benchmarks/support/Times.h"
#include "suite/common/ComApartment.h"
#include "suite/common/GdiObject.h"
#include "tests/e2e/support/Machine.h"
#include "tests/e2e/support/Program.h"
#include "tools/service/PipeServer.h"

namespace {

constexpr int kRounds = 21;
constexpr wchar_t kPipe[] = L"\\\\.\\Pipe\\iNotoraAssistant";
constexpr std::int32_t kSettingsChanged = 0x4B273B;
constexpr std::chrono::seconds kPatience{10};

using benchmark::Clock;
using benchmark::MsSince;
using benchmark::Times;

// A pixel of the screen, looked at as often as possible.
class Pixel {
  public:
    explicit Pixel(POINT screen) : point_(screen) {}

    COLORREF Get() const { return GetPixel(screen_.Get(), point_.x, point_.y); }
    // Milliseconds from `begin` until it has another colour than that.
    double UntilOther(COLORREF before, Clock::time_point begin) const {
        while (Get() == before) {
            if (Clock::now() - begin > kPatience)
                throw std::runtime_error("the pixel does not change");
        }
        return MsSince(begin);
    }

  private:
    const POINT point_;
    const suite::WindowDc screen_{nullptr};
};

POINT MiddleOf(const RECT& rect) {
    return {(rect.left + rect.right) / 2, (rect.top + rect.bottom) / 2};
}

// Nothing of the last round is under way any more: the window has answered, and no ping waits.
void Settle(const e2e::Program& program, PipeServer& service) {
    SendMessageW(program.Window(), WM_NULL, 0, 0);
    while (service.WaitFor(ServerEvent::Kind::kMessage, std::chrono::milliseconds(300))) {
    }
}

void ChooseDark(HWND window, bool dark) {
    const DWORD light = dark ? 0 : 1;
    RegSetKeyValueW(HKEY_CURRENT_USER, L"Software\\Microsoft\\Windows\\CurrentVersion\\Themes\\Personalize",
                    L"AppsUseLightTheme", REG_DWORD, &light, sizeof(light));
    SendMessageW(window, WM_SETTINGCHANGE, 0, 0);
}

void Measure() {
    e2e::Machine::ResetToInstalled();
    e2e::Machine::SetNumber(L"lumi_camera_switch", 1);
    PipeServer service;
    if (!service.Start(kPipe))
        throw std::runtime_error("the pipe is taken");
    e2e::Program program;
    if (!program.WaitForWindow() || !service.WaitFor(ServerEvent::Kind::kHello, kPatience))
        throw std::runtime_error("the window did not open");

    Times ping, change, page, theme;
    const RECT row = program.Find(L"focus_person_btn")->screenPx;
    const RECT detail = program.Find(L"show_detail_btn")->screenPx;
    const POINT farSide{row.left + (row.right - row.left) / 4, (row.top + row.bottom) / 2};
    for (int round = 0; round < kRounds; ++round) {
        program.HoldPointerAt(MiddleOf(row));
        Settle(program, service);
        auto begin = Clock::now();
        program.ClickHere();
        for (bool came = false; !came;) {
            const auto event = service.WaitFor(ServerEvent::Kind::kMessage, kPatience);
            if (!event)
                throw std::runtime_error("no ping");
            came = event->frame.slot[2] == kSettingsChanged;
        }
        ping.Add(MsSince(begin));

        // Away from it, so that only its state changes its look.
        program.MoveTo({row.left - 200, row.top - 200});
        Settle(program, service);
        const Pixel side(farSide);
        const DWORD now = *e2e::Machine::Number(L"lumi_camera_person_track");
        const COLORREF before = side.Get();
        begin = Clock::now();
        e2e::Machine::SetNumber(L"lumi_camera_person_track", now == 1 ? 0 : 1);
        change.Add(side.UntilOther(before, begin));

        Settle(program, service);
        // The switch's place is empty on the other page.
        program.HoldPointerAt(MiddleOf(detail));
        const COLORREF shown = side.Get();
        begin = Clock::now();
        program.ClickHere();
        page.Add(side.UntilOther(shown, begin));
        Settle(program, service);
        program.Click(L"back_btn");
        program.WaitFor(L"show_detail_btn");
        Settle(program, service);

        RECT client = {};
        GetClientRect(program.Window(), &client);
        POINT corner{client.right - 6, client.bottom - 6};
        ClientToScreen(program.Window(), &corner);
        const Pixel ground(corner);
        for (const bool dark : {true, false}) {
            const COLORREF former = ground.Get();
            begin = Clock::now();
            ChooseDark(program.Window(), dark);
            theme.Add(ground.UntilOther(former, begin));
            Settle(program, service);
        }
    }
    ping.Print("click until the service has the ping", 5);
    change.Print("change by another program until painted", 50);
    page.Print("click until the other page is painted", 30);
    theme.Print("another theme until it is painted", 16.7);
}

}  // namespace

int main() {
    const suite::ComApartment com(suite::ComApartment::Kind::kSingleThreaded);
    return benchmark::Run(Measure);
}
