#include "tests/windows/preview/PreviewSupport.h"

#include <mfapi.h>

#include <algorithm>
#include <cstdlib>

#include "tests/support/Protocol.h"

namespace preview_test {

namespace {

constexpr wchar_t kWindowClass[] = L"PreviewTestWindow";
constexpr UINT kDeviceMessage = WM_APP + 2;
// Away from the screen's corner, where a desktop may keep something.
constexpr int kWindowLeft = 40;
constexpr int kWindowTop = 30;

}  // namespace

TestWindow::TestWindow(int width, int height, bool visible) {
    static const ATOM windowClass = [] {
        WNDCLASSEXW description = {};
        description.cbSize = sizeof description;
        description.lpfnWndProc = Procedure;
        description.hInstance = GetModuleHandleW(nullptr);
        description.lpszClassName = kWindowClass;
        return RegisterClassExW(&description);
    }();
    EXPECT_NE(windowClass, 0);
    window_ = CreateWindowExW(WS_EX_TOOLWINDOW | WS_EX_TOPMOST, kWindowClass, L"", WS_POPUP, kWindowLeft, kWindowTop,
                              width, height, nullptr, nullptr, GetModuleHandleW(nullptr), this);
    EXPECT_NE(window_, nullptr);
    if (visible) {
        ShowWindow(window_, SW_SHOWNOACTIVATE);
        UpdateWindow(window_);
    }
}

TestWindow::~TestWindow() {
    DestroyWindow(window_);
}

void TestWindow::Resize(int width, int height) {
    SetWindowPos(window_, nullptr, 0, 0, width, height, SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
}

LRESULT CALLBACK TestWindow::Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_NCCREATE) {
        const auto* create = reinterpret_cast<const CREATESTRUCTW*>(lParam);
        SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(create->lpCreateParams));
    }
    auto* self = reinterpret_cast<TestWindow*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (message == harness::Protocol::kCaptureFailed && self != nullptr) {
        self->events_.push_back(wParam);
        return 0;
    }
    if (message == kDeviceMessage && self != nullptr) {
        ++self->deviceMessages_;
        return 0;
    }
    if (message == WM_PAINT) {
        ValidateRect(window, nullptr);
        return 0;
    }
    return DefWindowProcW(window, message, wParam, lParam);
}

Shot ShotOf(HWND window) {
    RECT client = {};
    GetClientRect(window, &client);
    POINT origin = {0, 0};
    ClientToScreen(window, &origin);
    Shot shot;
    shot.width = client.right;
    shot.height = client.bottom;
    shot.pixels.resize(static_cast<std::size_t>(shot.width) * shot.height);
    HDC screen = GetDC(nullptr);
    HDC memory = CreateCompatibleDC(screen);
    BITMAPINFO info = {};
    info.bmiHeader = {sizeof(BITMAPINFOHEADER), shot.width, -shot.height, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
    void* bits = nullptr;
    HBITMAP bitmap = CreateDIBSection(memory, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
    HGDIOBJ former = SelectObject(memory, bitmap);
    BitBlt(memory, 0, 0, shot.width, shot.height, screen, origin.x, origin.y, SRCCOPY);
    GdiFlush();
    const auto* pixels = static_cast<const std::uint32_t*>(bits);
    std::transform(pixels, pixels + shot.pixels.size(), shot.pixels.begin(),
                   [](std::uint32_t pixel) { return pixel & 0xFFFFFF; });
    SelectObject(memory, former);
    DeleteObject(bitmap);
    DeleteDC(memory);
    ReleaseDC(nullptr, screen);
    return shot;
}

Shot WaitForShot(HWND window, const std::function<bool(const Shot&)>& condition) {
    Shot shot;
    Wait([&] {
        shot = ShotOf(window);
        return condition(shot);
    });
    return shot;
}

bool IsNear(std::uint32_t a, std::uint32_t b, int tolerance) {
    for (const int shift : {0, 8, 16}) {
        const int difference = static_cast<int>(a >> shift & 0xFF) - static_cast<int>(b >> shift & 0xFF);
        if (std::abs(difference) > tolerance) {
            return false;
        }
    }
    return true;
}

void PreviewTest::SetUpTestSuite() {
    ASSERT_GE(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED | COINIT_DISABLE_OLE1DDE), S_OK);
    ASSERT_EQ(MFStartup(MF_VERSION, MFSTARTUP_FULL), S_OK);
}

void PreviewTest::TearDownTestSuite() {
    MFShutdown();
    CoUninitialize();
}

std::vector<std::string> PreviewTest::Notes() {
    constexpr std::string_view kLevel = "[L3] ";
    std::vector<std::string> notes;
    for (const std::string& line : harness::TestLog::Lines()) {
        if (line.starts_with(kLevel)) {
            notes.push_back(line.substr(kLevel.size()));
        }
    }
    return notes;
}

}  // namespace preview_test
