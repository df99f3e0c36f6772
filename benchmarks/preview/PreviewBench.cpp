// Measures the live preview from outside, on the real program with the demo camera at 1280x720 and 30 a second: a click
// until the first picture is on the screen, a click until it is gone, how long the window does not answer meanwhile,
// and the share of a processor that a running preview takes. What the demo camera itself takes for that, opened and
// read by a plain source reader in this process, is measured too and told apart.
#include <windows.h>

#include <mfapi.h>
#include <mfidl.h>
#include <mfreadwrite.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <thread>
#include <vector>

#include "benchmarks/support/Measuring.h"
#include "benchmarks/support/Times.h"
#include "suite/common/ComApartment.h"
#include "suite/common/ComReference.h"
#include "suite/common/GdiObject.h"
#include "tests/e2e/support/Machine.h"
#include "tests/e2e/support/ProcessFootprint.h"
#include "tests/e2e/support/Program.h"
#include "tools/democamera/DemoCamera.h"

namespace {

using benchmark::Clock;
using benchmark::MsSince;
using benchmark::Times;
using std::chrono::seconds;

constexpr int kRounds = 11;
constexpr seconds kPatience{20};
constexpr seconds kSteady{10};
constexpr DWORD kVideoStream = static_cast<DWORD>(MF_SOURCE_READER_FIRST_VIDEO_STREAM);

constexpr std::uint32_t kRed = 0xD03030;
constexpr std::uint32_t kBlue = 0x3050D0;

// Percent of one processor over the time that `work` takes.
template <typename Work>
double ShareOf(HANDLE process, Work work) {
    const auto begin = Clock::now();
    const double before = e2e::ProcessorMs(process);
    work();
    return 100.0 * (e2e::ProcessorMs(process) - before) / MsSince(begin);
}

void PaintHalves(std::uint32_t* picture, std::uint32_t width, std::uint32_t height, std::uint64_t) {
    for (std::uint32_t y = 0; y < height; ++y, picture += width) {
        std::fill_n(picture, width / 2, kRed);
        std::fill_n(picture + width / 2, width - width / 2, kBlue);
    }
}

// The demo camera, read by nothing but a plain reader.
struct CameraAlone {
    double firstFrameMs = 0;
    double sharePercent = 0;

    void Measure() {
        democamera::CameraSettings settings;
        settings.painter = PaintHalves;
        const auto camera = democamera::DemoCamera::Make(settings);
        Times first;
        for (int round = 0; round < kRounds; ++round) {
            const auto begin = Clock::now();
            const suite::ComReference<IMFSourceReader> reader = Open(*camera);
            Read(*reader.Get());
            first.Add(MsSince(begin));
            if (round + 1 == kRounds) {
                sharePercent = ShareOf(GetCurrentProcess(), [&] {
                    for (const auto end = Clock::now() + kSteady; Clock::now() < end;)
                        Read(*reader.Get());
                });
            }
        }
        firstFrameMs = first.Median();
    }

  private:
    static suite::ComReference<IMFSourceReader> Open(democamera::DemoCamera& camera) {
        suite::ComReference<IMFMediaSource> source;
        suite::ComReference<IMFSourceReader> reader;
        if (FAILED(camera.OpenSource(source.Put())) ||
            FAILED(MFCreateSourceReaderFromMediaSource(source.Get(), nullptr, reader.Put())))
            throw std::runtime_error("the demo camera cannot be read");
        return reader;
    }
    static void Read(IMFSourceReader& reader) {
        for (suite::ComReference<IMFSample> sample; !sample;) {
            DWORD flags = 0;
            if (FAILED(reader.ReadSample(kVideoStream, 0, nullptr, &flags, nullptr, sample.Put())) || flags != 0)
                throw std::runtime_error("the demo camera does not deliver");
        }
    }
};

// Asks the window again and again, and keeps the longest time that an answer took.
class AnswerWatch {
  public:
    explicit AnswerWatch(HWND window)
        : thread_([this, window] {
              while (!done_) {
                  const auto begin = Clock::now();
                  SendMessageW(window, WM_NULL, 0, 0);
                  longestMs_ = std::max(longestMs_.load(), MsSince(begin));
                  Sleep(1);
              }
          }) {}
    ~AnswerWatch() { Stop(); }
    AnswerWatch(const AnswerWatch&) = delete;
    AnswerWatch& operator=(const AnswerWatch&) = delete;

    double Stop() {
        done_ = true;
        if (thread_.joinable())
            thread_.join();
        return longestMs_;
    }

  private:
    std::atomic<bool> done_ = false;
    std::atomic<double> longestMs_ = 0;
    std::thread thread_;
};

bool IsNear(COLORREF shown, std::uint32_t wanted) {
    const int parts[] = {GetRValue(shown) - static_cast<int>(wanted >> 16 & 0xFF),
                         GetGValue(shown) - static_cast<int>(wanted >> 8 & 0xFF),
                         GetBValue(shown) - static_cast<int>(wanted & 0xFF)};
    return std::all_of(std::begin(parts), std::end(parts), [](int part) { return std::abs(part) <= 8; });
}

// Until the point of the screen has the picture's colour, or has it no more.
void WaitForPicture(POINT screen, bool wanted) {
    const suite::WindowDc screenDc(nullptr);
    const auto begin = Clock::now();
    bool right = false;
    while (!right && Clock::now() - begin < kPatience)
        right = IsNear(GetPixel(screenDc.Get(), screen.x, screen.y), kBlue) == wanted;
    if (!right)
        throw std::runtime_error(wanted ? "no picture comes" : "the picture stays");
}

void Measure() {
    CameraAlone camera;
    camera.Measure();

    e2e::Machine::UseProgram(L"PixoraDemo");
    e2e::Machine::ResetToInstalled();
    SetEnvironmentVariableW(L"PIXORA_DEMO_CAMERA", L"picture=halves size=1280x720 rate=30");
    e2e::Program program;
    if (!program.WaitForWindow())
        throw std::runtime_error("the window did not open");
    const RECT area = program.Find(L"preview_wnd")->screenPx;
    const RECT button = program.Find(L"preview_switch")->screenPx;
    const POINT left{area.left + (area.right - area.left) / 4, (area.top + area.bottom) / 2};
    const POINT press{(button.left + button.right) / 2, (button.top + button.bottom) / 2};

    Times on, off, blockedOn, blockedOff;
    double share = 0;
    for (int round = 0; round <= kRounds; ++round) {
        program.HoldPointerAt(press);
        AnswerWatch starting(program.Window());
        auto begin = Clock::now();
        program.ClickHere();
        WaitForPicture(left, true);
        const double onMs = MsSince(begin);
        // Only then the ordered wait is over, and a click counts again.
        if (!e2e::WaitUntil([&] {
                const auto control = program.Find(L"preview_switch");
                return control && (control->state & STATE_SYSTEM_UNAVAILABLE) == 0;
            }))
            throw std::runtime_error("the switch stays disabled");
        const double blockedOnMs = starting.Stop();
        if (round == kRounds)
            share = ShareOf(program.Process(),
                            [] { Sleep(static_cast<DWORD>(std::chrono::milliseconds(kSteady).count())); });

        program.HoldPointerAt(press);
        AnswerWatch stopping(program.Window());
        begin = Clock::now();
        program.ClickHere();
        WaitForPicture(left, false);
        const double offMs = MsSince(begin);
        SendMessageW(program.Window(), WM_NULL, 0, 0);
        const double blockedOffMs = stopping.Stop();
        // The first start loads what the later ones find loaded; it is told apart.
        if (round == 0) {
            std::printf("first start of the process, click to picture:  %.1f ms\n", onMs);
            continue;
        }
        on.Add(onMs);
        off.Add(offMs);
        blockedOn.Add(blockedOnMs);
        blockedOff.Add(blockedOffMs);
    }
    on.Print("click until the first picture is on the screen");
    std::printf("  of it the camera's own:  %.1f ms, the program's:  %.1f ms\n", camera.firstFrameMs,
                on.Median() - camera.firstFrameMs);
    off.Print("click until the picture is gone");
    blockedOn.Print("window without an answer while it starts (during the ordered 400 ms it answers)");
    blockedOff.Print("window without an answer while it stops");
    std::printf("1280x720, 30 a second:  %.1f %% of one processor, of it the camera's own %.1f %%\n", share,
                camera.sharePercent);
    program.Click(L"closebtn");
    program.WaitForEnd();
}

}  // namespace

int main() {
    const suite::ComApartment com(suite::ComApartment::Kind::kMultiThreaded);
    MFStartup(MF_VERSION, MFSTARTUP_FULL);
    const int status = benchmark::Run(Measure);
    MFShutdown();
    return status;
}
