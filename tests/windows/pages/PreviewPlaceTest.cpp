// Where the preview's window stands, at each scale: whole numbers, multiplied before they are divided; and what else
// it asks of the system.
#include "pages/PreviewWindow.h"

#include <dbt.h>

#include "tests/support/ImportHook.h"
#include "tests/windows/pages/PageTests.h"
#include "tests/windows/support/Screen.h"

namespace {

struct Place {
    int dpi;
    RECT window;  // from the owner's client area
    RECT region;  // what is left of it; a rounded region ends a pixel before its right and lower edge
};

class PreviewPlaceTest : public PageTest, public testing::WithParamInterface<Place> {};

TEST_P(PreviewPlaceTest, AreThoseOfTheScale) {
    const Place& wanted = GetParam();
    PreviewWindow preview({});
    ASSERT_TRUE(preview.Create(Host().GetHWND(), GetModuleHandleW(nullptr)));
    preview.Show(wanted.dpi, true);
    RECT place = {};
    GetWindowRect(preview.Get(), &place);
    MapWindowPoints(nullptr, Host().GetHWND(), reinterpret_cast<POINT*>(&place), 2);
    EXPECT_EQ(place.left, wanted.window.left);
    EXPECT_EQ(place.top, wanted.window.top);
    EXPECT_EQ(place.right, wanted.window.right);
    EXPECT_EQ(place.bottom, wanted.window.bottom);

    const HRGN region = CreateRectRgn(0, 0, 0, 0);
    EXPECT_NE(GetWindowRgn(preview.Get(), region), ERROR);
    RECT box = {};
    GetRgnBox(region, &box);
    EXPECT_EQ(box.left, wanted.region.left);
    EXPECT_EQ(box.top, wanted.region.top);
    EXPECT_EQ(box.right, wanted.region.right);
    EXPECT_EQ(box.bottom, wanted.region.bottom);
    // The corners are as round at every scale.
    const HRGN shape = CreateRoundRectRgn(wanted.region.left, wanted.region.top, wanted.region.right + 1,
                                          wanted.region.bottom + 1, 32, 32);
    EXPECT_TRUE(AreSameRegion(region, shape));
    DeleteObject(region);
    DeleteObject(shape);
}

class PreviewWindowTest : public PageTest {};

HWND g_cut = nullptr;
bool g_wasVisible = false;
BYTE g_alpha = 255;

int WINAPI Cut(HWND window, HRGN region, BOOL) {
    g_cut = window;
    g_wasVisible = IsWindowVisible(window) != FALSE;
    GetLayeredWindowAttributes(window, nullptr, &g_alpha, nullptr);
    DeleteObject(region);
    return TRUE;
}

// A system may give a window its shape only while it is visible and has no graphics device: then the picture would be
// seen all over it.
TEST_F(PreviewWindowTest, ItIsCutWhileItIsVisibleAndTransparent) {
    const harness::ImportHook hook(nullptr, "SetWindowRgn", &Cut);
    PreviewWindow preview({});
    ASSERT_TRUE(preview.Create(Host().GetHWND(), GetModuleHandleW(nullptr)));
    preview.Place(96, true);
    EXPECT_EQ(g_cut, preview.Get());
    EXPECT_TRUE(g_wasVisible);
    EXPECT_EQ(g_alpha, 0);
    EXPECT_FALSE(IsWindowVisible(preview.Get()));
}

TEST_F(PreviewWindowTest, IsHiddenUntilItIsShown) {
    PreviewWindow preview({});
    ASSERT_TRUE(preview.Create(Host().GetHWND(), GetModuleHandleW(nullptr)));
    preview.Place(USER_DEFAULT_SCREEN_DPI, true);
    EXPECT_FALSE(IsWindowVisible(preview.Get()));
    preview.Show(USER_DEFAULT_SCREEN_DPI, true);
    EXPECT_TRUE(IsWindowVisible(preview.Get()));
}

// Each new region paints the window anew.
TEST_F(PreviewWindowTest, ItsShapeIsMadeAnewForAnotherSizeOnly) {
    static int shapes;
    static decltype(&SetWindowRgn) original;
    int (*const count)(HWND, HRGN, BOOL) = [](HWND window, HRGN region, BOOL redraw) -> int {
        ++shapes;
        return original(window, region, redraw);
    };
    const harness::ImportHook hook(nullptr, "SetWindowRgn", reinterpret_cast<void*>(count));
    original = hook.Original<decltype(original)>();
    PreviewWindow preview({});
    ASSERT_TRUE(preview.Create(Host().GetHWND(), GetModuleHandleW(nullptr)));
    shapes = 0;
    preview.Show(USER_DEFAULT_SCREEN_DPI, true);
    EXPECT_EQ(shapes, 1);
    SetWindowPos(Host().GetHWND(), nullptr, 130, 70, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
    preview.Place(USER_DEFAULT_SCREEN_DPI, true);
    EXPECT_EQ(shapes, 1) << "in another place";
    preview.Place(2 * USER_DEFAULT_SCREEN_DPI, true);
    EXPECT_EQ(shapes, 2);
}

TEST_F(PreviewWindowTest, WhileItIsThereItHearsOfCamerasThatGo) {
    static HDEVNOTIFY asked, ended;
    static HANDLE listener;
    static DEV_BROADCAST_DEVICEINTERFACE_W filter;
    HDEVNOTIFY(WINAPI* const ask)
    (HANDLE, void*, DWORD) = [](HANDLE window, void* wanted, DWORD flags) -> HDEVNOTIFY {
        EXPECT_EQ(flags, static_cast<DWORD>(DEVICE_NOTIFY_WINDOW_HANDLE));
        listener = window;
        filter = *static_cast<const DEV_BROADCAST_DEVICEINTERFACE_W*>(wanted);
        asked = &filter;
        return asked;
    };
    BOOL(WINAPI* const end)
    (HDEVNOTIFY) = [](HDEVNOTIFY notification) -> BOOL {
        ended = notification;
        return TRUE;
    };
    const harness::ImportHook asking(nullptr, "RegisterDeviceNotificationW", reinterpret_cast<void*>(ask));
    const harness::ImportHook ending(nullptr, "UnregisterDeviceNotification", reinterpret_cast<void*>(end));
    ended = nullptr;
    PreviewWindow preview({});
    ASSERT_TRUE(preview.Create(Host().GetHWND(), GetModuleHandleW(nullptr)));
    EXPECT_EQ(listener, preview.Get());
    EXPECT_EQ(filter.dbcc_size, sizeof filter);
    EXPECT_EQ(filter.dbcc_devicetype, static_cast<DWORD>(DBT_DEVTYP_DEVICEINTERFACE));
    // KSCATEGORY_CAPTURE, whose header cannot be read beside those of Media Foundation.
    constexpr GUID kCameras = {0x65E8773D, 0x8F56, 0x11D0, {0xA3, 0xB9, 0x00, 0xA0, 0xC9, 0x22, 0x31, 0x96}};
    EXPECT_TRUE(filter.dbcc_classguid == kCameras);
    EXPECT_FALSE(ended);
    preview.Destroy();
    EXPECT_EQ(ended, asked);
}

TEST_F(PreviewWindowTest, OfDevicesOnlyAnInterfaceThatHasGoneIsTold) {
    PreviewWindow::Events events;
    std::vector<std::wstring> gone;
    events.deviceRemoved = [&](const std::wstring& link) { gone.push_back(link); };
    PreviewWindow preview(events);
    ASSERT_TRUE(preview.Create(Host().GetHWND(), GetModuleHandleW(nullptr)));
    const auto tell = [&](WPARAM what, DWORD type) {
        DEV_BROADCAST_DEVICEINTERFACE_W device = {};
        device.dbcc_size = sizeof device;
        device.dbcc_devicetype = type;
        device.dbcc_name[0] = L'a';
        EXPECT_TRUE(SendMessageW(preview.Get(), WM_DEVICECHANGE, what, reinterpret_cast<LPARAM>(&device)));
    };
    tell(DBT_DEVICEARRIVAL, DBT_DEVTYP_DEVICEINTERFACE);
    tell(DBT_DEVICEREMOVECOMPLETE, DBT_DEVTYP_PORT);
    EXPECT_TRUE(SendMessageW(preview.Get(), WM_DEVICECHANGE, DBT_DEVICEREMOVECOMPLETE, 0));
    EXPECT_TRUE(gone.empty());
    tell(DBT_DEVICEREMOVECOMPLETE, DBT_DEVTYP_DEVICEINTERFACE);
    EXPECT_EQ(gone, std::vector<std::wstring>{L"a"});
}

TEST_F(PreviewWindowTest, AnExceptionStaysWithinIt) {
    harness::TestLog::Expect("[L4] unexpected exception: of a tick(PreviewWindow::Procedure)");
    PreviewWindow::Events events;
    int ticks = 0;
    events.tick = [&] {
        ++ticks;
        throw std::runtime_error("of a tick");
    };
    PreviewWindow preview(events);
    ASSERT_TRUE(preview.Create(Host().GetHWND(), GetModuleHandleW(nullptr)));
    SendMessageW(preview.Get(), WM_TIMER, 1, 0);
    EXPECT_EQ(ticks, 1);
    EXPECT_TRUE(IsWindow(preview.Get()));
}

// 598 units are 747.5 pixels at 125 %, 354 are 442.5, 558 are 697.5 and 315 are 393.75.
INSTANTIATE_TEST_SUITE_P(Scales, PreviewPlaceTest,
                         testing::Values(Place{96, {40, 40, 638, 394}, {40, 40, 557, 314}},
                                         Place{120, {50, 50, 797, 492}, {50, 50, 696, 392}},
                                         Place{144, {60, 60, 957, 591}, {60, 60, 836, 471}},
                                         Place{192, {80, 80, 1276, 788}, {80, 80, 1115, 629}},
                                         Place{100, {41, 41, 663, 409}, {41, 41, 580, 327}}),
                         [](const auto& place) { return std::to_string(place.param.dpi); });

}  // namespace
