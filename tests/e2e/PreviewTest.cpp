// The live preview: picture, place, switch, and everything that can happen to a camera. The program is the variant with
// the demo camera, whose picture has a red left half and a blue right half; mirrored, it is the other way round.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <windows.h>

#include <wtsapi32.h>

#include <cstdlib>
#include <functional>
#include <map>
#include <tuple>
#include <vector>

#include "preview/pixels/PixelConverter.h"
#include "tests/e2e/support/Machine.h"
#include "tests/e2e/support/Program.h"
#include "tests/support/TopLevelWindows.h"
#include "tests/support/WineOnly.h"
#include "tools/democamera/FrameEncoder.h"

namespace e2e {
namespace {

using testing::IsEmpty;

constexpr COLORREF kRed = 0xD03030;  // 0x00RRGGBB, as the screen's pixels are told
constexpr COLORREF kBlue = 0x3050D0;
using harness::Protocol::kCaptureFailed;
constexpr LPARAM kDeviceInUse = static_cast<LONG>(0xC00D3704);

constexpr char kOpened[] = "[L3] demo camera opened: its pictures are made up(DemoCamera::OpenSource)";
constexpr char kClosed[] = "[L3] demo camera closed(DemoMediaSource::Shutdown)";
constexpr char kSourceError[] = "[L4] create device source error!(Preview::CreateDeviceSource)";
constexpr char kStartError[] = "[L4] create device source error!(Preview::Start)";
constexpr char kNoDevice[] = "[L4] can not find any video device!(Preview::SelectDevice)";

bool IsNear(COLORREF a, COLORREF b) {
    for (const int shift : {0, 8, 16}) {
        if (std::abs(static_cast<int>(a >> shift & 0xFF) - static_cast<int>(b >> shift & 0xFF)) > 8)
            return false;
    }
    return true;
}

class PreviewTest : public testing::Test {
  protected:
    void SetUp() override {
        Machine::UseProgram(L"PixoraDemo");
        Machine::ResetToInstalled();
    }
    void TearDown() override {
        if (program_ && program_->Runs() && !HasFailure()) {
            program_->Click(L"closebtn");
            EXPECT_EQ(program_->WaitForEnd(), 0U);
        }
        program_.reset();
        if (harness::MayUseWine()) {
            RegDeleteKeyValueW(HKEY_CURRENT_USER, L"Control Panel\\Desktop", L"LogPixels");
        }
        SetEnvironmentVariableW(L"PIXORA_DEMO_CAMERA", nullptr);
    }

    void Open(const std::wstring& camera = {}) {
        SetEnvironmentVariableW(L"PIXORA_DEMO_CAMERA", (L"picture=halves " + camera).c_str());
        program_.emplace();
        ASSERT_TRUE(program_->WaitForWindow());
    }
    // On a screen of that scale. Some systems read it only when the desktop is made: there the window is told as if it
    // had come to such a screen.
    void OpenAtScale(int dpi, const std::wstring& camera) {
        dpi_ = dpi;
        const DWORD value = static_cast<DWORD>(dpi);
        RegSetKeyValueW(HKEY_CURRENT_USER, L"Control Panel\\Desktop", L"LogPixels", REG_DWORD, &value, sizeof value);
        ASSERT_NO_FATAL_FAILURE(Open(camera));
        const auto width = [this] {
            RECT client = {};
            GetClientRect(Main(), &client);
            return client.right;
        };
        const LONG wanted = 1040 * dpi / 96;
        if (width() != wanted)
            program_->SetScale(dpi);
        ASSERT_EQ(width(), wanted);
    }
    void TurnOn() {
        program_->Click(L"preview_switch");
        ASSERT_TRUE(ShowsPicture());
    }
    void OpenWithPicture(const std::wstring& camera = {}) {
        ASSERT_NO_FATAL_FAILURE(Open(camera));
        TurnOn();
    }

    HWND Main() const { return program_->Window(); }
    // The preview's windows of this program, hidden ones too.
    std::vector<HWND> PreviewWindows() const { return harness::OwnedWindows(L"STATIC", Main()); }
    bool IsPreviewVisible() const {
        const std::vector<HWND> windows = PreviewWindows();
        return windows.size() == 1 && IsWindowVisible(windows.front());
    }
    COLORREF PixelAtDip(int x, int y) const { return program_->PixelAt(MulDiv(x, dpi_, 96), MulDiv(y, dpi_, 96)); }
    // Mirrored, and right up to the edges of the preview area.
    bool ShowsPictureNow() const {
        return IsNear(PixelAtDip(83, 200), kBlue) && IsNear(PixelAtDip(320, 200), kBlue) &&
               IsNear(PixelAtDip(358, 200), kRed) && IsNear(PixelAtDip(595, 200), kRed) &&
               IsNear(PixelAtDip(200, 83), kBlue) && IsNear(PixelAtDip(200, 352), kBlue);
    }
    bool ShowsPicture() const {
        if (WaitUntil([this] { return ShowsPictureNow(); }))
            return true;
        program_->Screenshot(L"preview-without-picture");
        return false;
    }
    bool ShowsNoPicture() const {
        return WaitUntil([this] { return !IsNear(PixelAtDip(83, 200), kBlue) && !IsNear(PixelAtDip(595, 200), kRed); });
    }
    bool IsSwitchOn() const {
        const auto found = program_->Find(L"preview_switch");
        return found && (found->state & STATE_SYSTEM_CHECKED) != 0;
    }
    bool IsOff() const {
        return WaitUntil([this] { return !IsSwitchOn(); }) && ShowsNoPicture() && !IsPreviewVisible();
    }
    // Asked again: a change of focus that was under way may take it back.
    static bool BringToFront(HWND window) {
        return WaitUntil([window] {
            SetForegroundWindow(window);
            return GetForegroundWindow() == window;
        });
    }
    // A click that makes the program active, and the end of what the program does then. Another program that took the
    // front in the midst of it would leave the screen with an order that the system does not know of.
    bool ClickToFront(POINT screen) const {
        program_->ClickAt(screen);
        return WaitUntil([this] {
                   const HWND front = GetForegroundWindow();
                   return front == Main() || GetWindow(front, GW_OWNER) == Main();
               }) &&
               SendMessageTimeoutW(Main(), WM_NULL, 0, 0, SMTO_NORMAL, 5000, nullptr) != 0;
    }
    // Where the window must stand, from the main window's client area.
    RECT WantedPlace() const {
        POINT origin = {};
        ClientToScreen(Main(), &origin);
        const LONG offset = 40 * dpi_ / 96;
        const LONG left = origin.x + offset;
        const LONG top = origin.y + offset;
        return {left, top, left + 598 * dpi_ / 96, top + 354 * dpi_ / 96};
    }
    bool IsPlaced() const {
        return WaitUntil([this] {
            const std::vector<HWND> windows = PreviewWindows();
            const RECT wanted = WantedPlace();
            RECT place = {};
            return windows.size() == 1 && GetWindowRect(windows.front(), &place) && EqualRect(&place, &wanted);
        });
    }

    // The camera message comes, once, and says what to do; it is closed.
    void TakeMessage() {
        const auto text = program_->TakeMessage();
        ASSERT_TRUE(text);
        EXPECT_NE(text->find(L"The camera can’t be used."), std::wstring::npos);
        // Whatever waited behind it has come by the time the window answers.
        SendMessageW(Main(), WM_NULL, 0, 0);
        EXPECT_EQ(CountWindows(kMessageClass), 0);
    }
    static int Count(const char* line) {
        int count = 0;
        for (const std::string& logged : Machine::Log())
            count += logged == line ? 1 : 0;
        return count;
    }
    static bool IsCameraFree() {
        return WaitUntil([] { return Count(kOpened) == Count(kClosed); });
    }

    int dpi_ = 96;
    std::optional<Program> program_;
};

TEST_F(PreviewTest, ThePictureComesAndGoesWithTheSwitch) {
    OpenWithPicture();
    EXPECT_TRUE(IsSwitchOn());
    EXPECT_TRUE(IsPlaced());
    program_->Screenshot(L"preview-halves");
    for (int i = 0; i < 3; ++i) {
        program_->Click(L"preview_switch");
        EXPECT_TRUE(IsOff());
        EXPECT_TRUE(IsCameraFree());
        program_->Click(L"preview_switch");
        EXPECT_TRUE(ShowsPicture());
        EXPECT_EQ(PreviewWindows().size(), 1U);
    }
    EXPECT_EQ(Count(kOpened), 4);
}

class PreviewInFormat : public PreviewTest, public testing::WithParamInterface<const wchar_t*> {};

TEST_P(PreviewInFormat, ColoursAreRight) {
    OpenWithPicture(std::wstring(L"format=") + GetParam());
}
INSTANTIATE_TEST_SUITE_P(All, PreviewInFormat, testing::Values(L"rgb32", L"rgb24", L"yuy2", L"nv12"));

class PreviewAtScale : public PreviewTest, public testing::WithParamInterface<int> {};

TEST_P(PreviewAtScale, FillsTheAreaAndNothingElse) {
    PIXORA_WINE_ONLY("the scale of the screen is the user's");
    ASSERT_NO_FATAL_FAILURE(OpenAtScale(GetParam(), L"size=1280x720"));
    ASSERT_NO_FATAL_FAILURE(TurnOn());
    EXPECT_TRUE(IsPlaced());
    const RECT area = program_->ClientRect(L"preview_wnd");
    EXPECT_EQ(area.left, 80 * dpi_ / 96);
    EXPECT_EQ(area.right, 598 * dpi_ / 96);
    const COLORREF card = PixelAtDip(60, 200);
    const int middleX = (area.left + area.right) / 2;
    const int middleY = (area.top + area.bottom) / 2;
    // One pixel outside of the area is the card, one inside is the picture; the corners are cut.
    EXPECT_EQ(program_->PixelAt(area.left - 1, middleY), card);
    EXPECT_TRUE(IsNear(program_->PixelAt(area.left, middleY), kBlue));
    EXPECT_EQ(program_->PixelAt(area.right + 1, middleY), card);
    EXPECT_TRUE(IsNear(program_->PixelAt(area.right - 3, middleY), kRed));
    EXPECT_EQ(program_->PixelAt(middleX / 2, area.top - 1), card);
    EXPECT_TRUE(IsNear(program_->PixelAt(middleX / 2, area.top), kBlue));
    EXPECT_EQ(program_->PixelAt(middleX / 2, area.bottom + 1), card);
    EXPECT_TRUE(IsNear(program_->PixelAt(middleX / 2, area.bottom - 3), kBlue));
    EXPECT_FALSE(IsNear(program_->PixelAt(area.left + 1, area.top + 1), kBlue));
    EXPECT_FALSE(IsNear(program_->PixelAt(area.right - 2, area.bottom - 2), kRed));
    // The halves meet in the middle, sharply.
    EXPECT_TRUE(IsNear(program_->PixelAt(middleX - 3, middleY), kBlue));
    EXPECT_TRUE(IsNear(program_->PixelAt(middleX + 3, middleY), kRed));
    program_->Screenshot(L"preview-" + std::to_wstring(dpi_));
}
INSTANTIATE_TEST_SUITE_P(All, PreviewAtScale, testing::Values(96, 144, 192));

// A camera whose frames are as large as the window's client area: what the camera encodes, decoded by the reference, is
// on the screen pixel by pixel, mirrored, all over the visible part.
class PreviewPixels : public PreviewTest, public testing::WithParamInterface<std::tuple<int, const wchar_t*>> {
  protected:
    // The frame that the camera delivers, as the window has to show it.
    static std::vector<DWORD> Wanted(const democamera::CameraMode& mode, preview::PixelFormat format) {
        std::vector<std::uint32_t> picture(std::size_t{mode.width} * mode.height);
        for (std::size_t i = 0; i < picture.size(); ++i)
            picture[i] = i % mode.width < mode.width / 2 ? kRed : kBlue;
        std::vector<std::uint8_t> frame(democamera::FrameBytes(mode));
        democamera::EncodeFrame(mode, picture.data(), frame.data());
        std::vector<DWORD> wanted(picture.size());
        preview::ConvertersFor(format, preview::CpuLevel::kScalar)
            .mirrored(reinterpret_cast<std::uint8_t*>(wanted.data()), static_cast<std::int32_t>(4 * mode.width),
                      frame.data(), static_cast<std::int32_t>(democamera::StrideBytes(mode)), mode.width, mode.height);
        for (DWORD& pixel : wanted)
            pixel &= 0xFFFFFF;
        return wanted;
    }
    // How many pixels of the area's visible part are not the wanted ones.
    int Wrong(const std::vector<DWORD>& wanted, int width, RECT area) const {
        SIZE size = {};
        const std::vector<DWORD> shown = program_->Pixels(size);
        const int origin = 40 * dpi_ / 96 + 1;  // of the preview's client area, behind its border
        constexpr int kCorner = 16;
        int wrong = 0;
        // The region leaves out the last column and row.
        for (int y = area.top; y < area.bottom - 2; ++y) {
            for (int x = area.left; x < area.right - 2; ++x) {
                const bool corner = (x < area.left + kCorner || x >= area.right - 2 - kCorner) &&
                                    (y < area.top + kCorner || y >= area.bottom - 2 - kCorner);
                const auto index = static_cast<std::size_t>((y - origin) * width + x - origin);
                wrong += !corner && shown[static_cast<std::size_t>(y * size.cx + x)] != wanted.at(index);
            }
        }
        return wrong;
    }
};

TEST_P(PreviewPixels, AreTheCamerasOwn) {
    const auto& [dpi, name] = GetParam();
    PIXORA_WINE_ONLY("the scale of the screen is the user's");
    static const std::map<std::wstring, std::pair<democamera::CameraFormat, preview::PixelFormat>> kFormats = {
        {L"rgb32", {democamera::CameraFormat::kRgb32, preview::PixelFormat::kRgb32}},
        {L"rgb24", {democamera::CameraFormat::kRgb24, preview::PixelFormat::kRgb24}},
        {L"yuy2", {democamera::CameraFormat::kYuy2, preview::PixelFormat::kYuy2}},
        {L"nv12", {democamera::CameraFormat::kNv12, preview::PixelFormat::kNv12}}};
    const auto& [encoded, decoded] = kFormats.at(name);
    democamera::CameraMode mode;
    mode.format = encoded;
    mode.width = static_cast<std::uint32_t>(598 * dpi / 96 - 2);
    mode.height = static_cast<std::uint32_t>(354 * dpi / 96 - 2);
    ASSERT_NO_FATAL_FAILURE(OpenAtScale(dpi, std::wstring(L"format=") + name + L" size=" + std::to_wstring(mode.width) +
                                                 L"x" + std::to_wstring(mode.height)));
    program_->Click(L"preview_switch");
    const std::vector<DWORD> wanted = Wanted(mode, decoded);
    const RECT area = program_->ClientRect(L"preview_wnd");
    ASSERT_EQ(area.right - area.left, 598 * dpi_ / 96 - 80 * dpi_ / 96);
    ASSERT_GT(area.bottom - area.top, 270 * dpi_ / 96);
    int wrong = -1;
    EXPECT_TRUE(WaitUntil([&] { return (wrong = Wrong(wanted, static_cast<int>(mode.width), area)) == 0; })) << wrong;
}
INSTANTIATE_TEST_SUITE_P(All, PreviewPixels,
                         testing::Combine(testing::Values(96, 144, 192),
                                          testing::Values(L"rgb32", L"rgb24", L"yuy2", L"nv12")));

TEST_F(PreviewTest, FollowsTheWindow) {
    OpenWithPicture();
    RECT main = {};
    GetWindowRect(Main(), &main);
    for (const POINT step : {POINT{57, 31}, POINT{-40, 12}, POINT{3, -50}}) {
        SetWindowPos(Main(), nullptr, main.left + step.x, main.top + step.y, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
        EXPECT_TRUE(IsPlaced());
        EXPECT_TRUE(ShowsPicture());
    }
}

TEST_F(PreviewTest, DraggingThePictureDragsTheWindow) {
    OpenWithPicture();
    RECT before = {};
    GetWindowRect(Main(), &before);
    const POINT grip = {before.left + 340, before.top + 220};
    // A late change of the focus may end a drag, and late news of the pointer move its end: then the user drags again.
    EXPECT_TRUE(WaitUntil([&] {
        SetWindowPos(Main(), nullptr, before.left, before.top, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
        RECT now = {};
        return program_->DragWindow(grip, {90, 45}) && GetWindowRect(Main(), &now) && now.left == before.left + 90 &&
               now.top == before.top + 45;
    }));
    EXPECT_TRUE(IsPlaced());
    EXPECT_TRUE(ShowsPicture());
}

TEST_F(PreviewTest, HidesWithTheWindow) {
    OpenWithPicture();
    program_->Click(L"minbtn");
    EXPECT_TRUE(WaitUntil([this] { return IsIconic(Main()) && !IsPreviewVisible(); }));
    ShowWindow(Main(), SW_RESTORE);
    EXPECT_TRUE(WaitUntil([this] { return IsPreviewVisible(); }));
    EXPECT_TRUE(IsPlaced());
    EXPECT_TRUE(ShowsPicture());

    ShowWindow(Main(), SW_HIDE);
    EXPECT_TRUE(WaitUntil([this] { return !IsPreviewVisible(); }));
    ShowWindow(Main(), SW_SHOW);
    EXPECT_TRUE(WaitUntil([this] { return IsPreviewVisible(); }));
    EXPECT_TRUE(ShowsPicture());
}

TEST_F(PreviewTest, StaysAboveItsWindowWhoeverIsActive) {
    OpenWithPicture();
    const HWND other = CreateWindowExW(WS_EX_TOOLWINDOW, L"STATIC", L"", WS_POPUP | WS_VISIBLE, 0, 0, 40, 40, nullptr,
                                       nullptr, nullptr, nullptr);
    ASSERT_TRUE(other);
    for (int i = 0; i < 3; ++i) {
        EXPECT_TRUE(BringToFront(other));
        EXPECT_TRUE(ShowsPicture());
        EXPECT_TRUE(BringToFront(Main()));
        EXPECT_TRUE(ShowsPicture());
        // The picture is active then, and not the window.
        EXPECT_TRUE(ClickToFront({WantedPlace().left + 300, WantedPlace().top + 100}));
        EXPECT_TRUE(ShowsPicture());
        EXPECT_TRUE(ClickToFront({WantedPlace().left + 200, WantedPlace().top + 395}));
        EXPECT_TRUE(ShowsPicture());
    }
    DestroyWindow(other);
}

TEST_F(PreviewTest, StaysOnItsPage) {
    OpenWithPicture();
    program_->Click(L"show_detail_btn");
    EXPECT_TRUE(WaitUntil([this] { return !IsPreviewVisible(); }));
    ASSERT_TRUE(program_->WaitFor(L"back_btn"));
    // Moving the window must not bring it up over the other page.
    SetWindowPos(Main(), nullptr, 100, 90, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
    EXPECT_FALSE(IsPreviewVisible());
    program_->Click(L"back_btn");
    EXPECT_TRUE(WaitUntil([this] { return IsPreviewVisible(); }));
    EXPECT_TRUE(IsPlaced());
    EXPECT_TRUE(ShowsPicture());
}

TEST_F(PreviewTest, ABusyCameraIsToldOnceAndWorksLater) {
    Machine::Expect(kSourceError);
    Machine::Expect(kStartError);
    Open(L"fault=busy opens=1");
    program_->Click(L"preview_switch");
    TakeMessage();
    EXPECT_TRUE(IsOff());
    program_->Click(L"preview_switch");
    EXPECT_TRUE(ShowsPicture());
}

// The capture's message, as it comes when another program takes the camera; not every system tells of that.
TEST_F(PreviewTest, TheMessageOfACameraInUseEndsItOnce) {
    OpenWithPicture();
    PostMessageW(Main(), kCaptureFailed, static_cast<WPARAM>(kDeviceInUse), 0);
    TakeMessage();
    EXPECT_TRUE(IsOff());
    EXPECT_TRUE(IsCameraFree());
    PostMessageW(Main(), kCaptureFailed, 0, 0);
    SendMessageW(Main(), WM_NULL, 0, 0);
    EXPECT_EQ(CountWindows(kMessageClass), 0) << "no error is no error";
    program_->Click(L"preview_switch");
    EXPECT_TRUE(ShowsPicture());
}

TEST_F(PreviewTest, ACameraThatAnotherProgramTakesIsToldOnce) {
    OpenWithPicture(L"fault=taken after=40 opens=1");
    TakeMessage();
    EXPECT_TRUE(IsOff());
    EXPECT_TRUE(IsCameraFree());
    program_->Click(L"preview_switch");
    EXPECT_TRUE(ShowsPicture());
}

// Whatever the camera does, everything else works meanwhile.
TEST_F(PreviewTest, ASlowCameraNeverHoldsTheWindowUp) {
    Open(L"opening=4000 closing=4500");  // less than the five seconds that the next opening waits
    program_->Click(L"preview_switch");
    EXPECT_TRUE(WaitUntil([this] { return IsSwitchOn(); }));
    program_->Click(L"show_detail_btn");
    EXPECT_TRUE(WaitUntil([this] { return program_->Find(L"back_btn").has_value(); }));
    EXPECT_EQ(Count(kOpened), 0) << "the page came when the camera was open";
    program_->Click(L"back_btn");
    EXPECT_TRUE(ShowsPicture());
    program_->Click(L"preview_switch");
    EXPECT_TRUE(WaitUntil([this] { return !IsSwitchOn(); }));
    EXPECT_EQ(Count(kClosed), 0) << "the switch waited for the camera";
    program_->Click(L"preview_switch");
    EXPECT_TRUE(ShowsPicture()) << "it opens when it has closed";
    EXPECT_EQ(CountWindows(kMessageClass), 0);
}

TEST_F(PreviewTest, WithoutACameraThereIsAMessageEachTime) {
    Machine::Expect(kNoDevice);
    Open(L"fault=absent");
    for (int i = 0; i < 2; ++i) {
        program_->Click(L"preview_switch");
        TakeMessage();
        EXPECT_TRUE(IsOff());
    }
}

TEST_F(PreviewTest, ARefusedCameraIsTold) {
    Machine::Expect(kSourceError);
    Machine::Expect(kStartError);
    Open(L"fault=refused");
    program_->Click(L"preview_switch");
    TakeMessage();
    EXPECT_TRUE(IsOff());
}

TEST_F(PreviewTest, AnUnpluggedCameraIsTold) {
    Machine::Expect(kNoDevice);
    OpenWithPicture(L"fault=unplugged after=40");
    TakeMessage();
    EXPECT_TRUE(IsOff());
    EXPECT_TRUE(IsCameraFree());
    program_->Click(L"preview_switch");
    TakeMessage();
    EXPECT_TRUE(IsOff());
}

// Each camera works the second time it is opened.
class FailingCamera : public PreviewTest, public testing::WithParamInterface<const wchar_t*> {};

TEST_P(FailingCamera, IsToldOnceAndCanBeTurnedOnAgain) {
    if (std::wstring(GetParam()).find(L"short") != std::wstring::npos) {
        Machine::Expect("[L4] a buffer does not hold a frame of 1280x720(Device::DrawSample)");
    }
    Open(std::wstring(L"opens=1 ") + GetParam());
    program_->Click(L"preview_switch");
    TakeMessage();
    EXPECT_TRUE(IsOff());
    EXPECT_TRUE(IsCameraFree());
    program_->Click(L"preview_switch");
    EXPECT_TRUE(ShowsPicture());
    EXPECT_EQ(PreviewWindows().size(), 1U);
}
INSTANTIATE_TEST_SUITE_P(All, FailingCamera,
                         testing::Values(L"fault=empty after=20", L"fault=error after=20", L"fault=silent after=20",
                                         L"fault=end after=20", L"fault=short after=20", L"fault=nostart"));

TEST_F(PreviewTest, ALockedSessionFreesTheCamera) {
    OpenWithPicture();
    SendMessageW(Main(), WM_WTSSESSION_CHANGE, WTS_SESSION_LOCK, 0);
    EXPECT_THAT(PreviewWindows(), IsEmpty());
    EXPECT_TRUE(IsOff());
    EXPECT_TRUE(IsCameraFree());
    SendMessageW(Main(), WM_WTSSESSION_CHANGE, WTS_SESSION_UNLOCK, 0);
    EXPECT_FALSE(IsSwitchOn()) << "the user decides when it is on again";
    EXPECT_TRUE(program_->Runs());
    program_->Click(L"preview_switch");
    EXPECT_TRUE(ShowsPicture());
    EXPECT_EQ(PreviewWindows().size(), 1U);
}

TEST_F(PreviewTest, ClosingTheWindowClosesTheCamera) {
    OpenWithPicture();
    program_->Click(L"closebtn");
    EXPECT_EQ(program_->WaitForEnd(), 0U);
    EXPECT_EQ(Count(kOpened), 1);
    EXPECT_EQ(Count(kClosed), 1);
}

}  // namespace
}  // namespace e2e
