#include "tests/e2e/support/Program.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <set>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/e2e/support/Machine.h"
#include "tests/support/PngFile.h"
#include "tests/support/TopLevelWindows.h"

namespace e2e {

namespace {

using harness::Protocol::kWindowClass;

// Of the layout.
constexpr int kWindowWidthDip = 1040;
constexpr int kWindowHeightDip = 604;
constexpr int kEffectsTopDip = 56;
constexpr int kEffectsBottomDip = 16;

// Where Pixora.exe is; the test of the installation names the installed one.
std::wstring FolderUnderTest() {
    wchar_t folder[MAX_PATH] = {};
    const DWORD length = GetEnvironmentVariableW(L"PIXORA_PROGRAM_FOLDER", folder, MAX_PATH);
    return length > 0 && length < MAX_PATH ? folder : ProgramFolder();
}

// The pixels of that part of the client area as they are on the screen, top row first.
std::vector<DWORD> Grab(HWND window, const RECT& part) {
    const SIZE size = {part.right - part.left, part.bottom - part.top};
    POINT origin = {part.left, part.top};
    ClientToScreen(window, &origin);

    BITMAPINFO info = {};
    info.bmiHeader = {sizeof(BITMAPINFOHEADER), size.cx, -size.cy, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
    void* bits = nullptr;
    const HDC screen = GetDC(nullptr);
    const HDC memory = CreateCompatibleDC(screen);
    const HBITMAP bitmap = CreateDIBSection(memory, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
    const HGDIOBJ previous = SelectObject(memory, bitmap);
    BitBlt(memory, 0, 0, size.cx, size.cy, screen, origin.x, origin.y, SRCCOPY);
    GdiFlush();
    const auto* pixels = static_cast<const DWORD*>(bits);
    std::vector<DWORD> result(pixels, pixels + static_cast<std::size_t>(size.cx) * static_cast<std::size_t>(size.cy));
    SelectObject(memory, previous);
    DeleteObject(bitmap);
    DeleteDC(memory);
    ReleaseDC(nullptr, screen);
    return result;
}

std::vector<DWORD> Grab(HWND window, SIZE& size) {
    RECT client = {};
    GetClientRect(window, &client);
    size = {client.right, client.bottom};
    return Grab(window, client);
}

void SendMouse(DWORD flags, int amount = 0) {
    INPUT input = {};
    input.type = INPUT_MOUSE;
    input.mi.dwFlags = flags;
    input.mi.mouseData = static_cast<DWORD>(amount);
    SendInput(1, &input, sizeof(input));
}

void SendKey(WORD key, DWORD flags) {
    INPUT input = {};
    input.type = INPUT_KEYBOARD;
    input.ki.wVk = key;
    input.ki.dwFlags = flags;
    SendInput(1, &input, sizeof(input));
}

}  // namespace

Program::Program(const std::wstring& arguments, const std::wstring& folder) {
    const std::wstring path = (folder.empty() ? FolderUnderTest() : folder) + Machine::ProgramName() + L".exe";
    std::wstring commandLine = L"\"" + path + L"\"" + (arguments.empty() ? L"" : L" " + arguments);
    STARTUPINFOW startup = {};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION process = {};
    if (!CreateProcessW(path.c_str(), commandLine.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup,
                        &process)) {
        throw std::runtime_error("the program cannot be started: " + std::to_string(GetLastError()));
    }
    CloseHandle(process.hThread);
    process_ = suite::Handle(process.hProcess);
    processId_ = process.dwProcessId;
}

Program::~Program() {
    if (Runs()) {
        TerminateProcess(process_.Get(), 99);
        WaitForSingleObject(process_.Get(), INFINITE);
    }
}

bool Program::Runs() const {
    return WaitForSingleObject(process_.Get(), 0) == WAIT_TIMEOUT;
}

std::optional<DWORD> Program::WaitForEnd(std::chrono::milliseconds atMost) {
    if (WaitForSingleObject(process_.Get(), static_cast<DWORD>(atMost.count())) != WAIT_OBJECT_0)
        return std::nullopt;
    DWORD code = 0;
    GetExitCodeProcess(process_.Get(), &code);
    return code;
}

HWND Program::WaitForWindow() {
    const bool shown = WaitUntil([this] {
        for (const HWND window : harness::TopLevelWindows(kWindowClass)) {
            DWORD owner = 0;
            GetWindowThreadProcessId(window, &owner);
            if (owner == processId_ && IsWindowVisible(window) && !AccessibleWindow(window).List().empty()) {
                window_ = window;
                return true;
            }
        }
        return !Runs();
    });
    if (!shown || !window_)
        return nullptr;
    RedrawWindow(window_, nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW);
    // Answered after everything before it: the window has painted.
    SendMessageW(window_, WM_NULL, 0, 0);
    return window_;
}

std::optional<AccessibleControl> Program::Find(const std::wstring& name) const {
    return AccessibleWindow(window_).Find(name);
}

std::optional<AccessibleControl> Program::WaitFor(const std::wstring& name) const {
    std::optional<AccessibleControl> control;
    WaitUntil([&] {
        control = Find(name);
        return control.has_value();
    });
    return control;
}

RECT Program::ClientRect(const std::wstring& name) const {
    const auto control = Find(name);
    if (!control)
        return {};
    RECT rect = control->screenPx;
    MapWindowPoints(nullptr, window_, reinterpret_cast<POINT*>(&rect), 2);
    return rect;
}

RECT Program::SetScale(int dpi, POINT move) const {
    RECT place = {};
    GetWindowRect(window_, &place);
    OffsetRect(&place, move.x, move.y);
    place.right = place.left + MulDiv(kWindowWidthDip, dpi, 96);
    place.bottom = place.top + MulDiv(kWindowHeightDip, dpi, 96);
    // The rectangle has to lie in that process's memory.
    const suite::Handle process(OpenProcess(PROCESS_VM_OPERATION | PROCESS_VM_WRITE, FALSE, processId_));
    void* remote = VirtualAllocEx(process.Get(), nullptr, sizeof(place), MEM_COMMIT | MEM_RESERVE, PAGE_READWRITE);
    if (remote && WriteProcessMemory(process.Get(), remote, &place, sizeof(place), nullptr))
        SendMessageW(window_, WM_DPICHANGED, MAKEWPARAM(dpi, dpi), reinterpret_cast<LPARAM>(remote));
    VirtualFreeEx(process.Get(), remote, 0, MEM_RELEASE);
    return place;
}

void Program::MoveTo(POINT screen) const {
    SetCursorPos(screen.x, screen.y);
}

bool Program::HoldPointerAt(POINT screen) const {
    constexpr DWORD kLateNewsMs = 20;
    return WaitUntil([&] {
        MoveTo(screen);
        Sleep(kLateNewsMs);
        POINT now = {};
        return GetCursorPos(&now) && now.x == screen.x && now.y == screen.y;
    });
}

void Program::ClickAt(POINT screen) const {
    HoldPointerAt(screen);
    ClickHere();
}

void Program::ClickHere() const {
    SendMouse(MOUSEEVENTF_LEFTDOWN);
    SendMouse(MOUSEEVENTF_LEFTUP);
}

bool Program::DragWindow(POINT gripScreen, SIZE by) const {
    constexpr int kSteps = 8;
    constexpr std::chrono::milliseconds kToldAgain{500};
    constexpr std::chrono::seconds kPatienceOfAStep{4};
    RECT before = {};
    GetWindowRect(window_, &before);
    HoldPointerAt(gripScreen);
    SendMouse(MOUSEEVENTF_LEFTDOWN);
    bool follows = true;
    for (int step = 1; step <= kSteps && follows; ++step) {
        const POINT moved = {by.cx * step / kSteps, by.cy * step / kSteps};
        const POINT place = {gripScreen.x + moved.x, gripScreen.y + moved.y};
        MoveTo(place);
        auto told = std::chrono::steady_clock::now();
        // What the pointer does is told to the window by two ways, of which one may be late and bring it back: it is
        // moved again then, by way of another place, for only a change is told. Not more often than needed: the news of
        // the other place may be late too.
        follows = WaitUntil(
            [&] {
                if (std::chrono::steady_clock::now() - told > kToldAgain) {
                    MoveTo({place.x + 1, place.y});
                    MoveTo(place);
                    told = std::chrono::steady_clock::now();
                }
                RECT now = {};
                GetWindowRect(window_, &now);
                return now.left == before.left + moved.x && now.top == before.top + moved.y;
            },
            kPatienceOfAStep);
    }
    SendMouse(MOUSEEVENTF_LEFTUP);
    return follows;
}

void Program::Click(const std::wstring& name) const {
    decltype(Find(name)) control;
    // As long as the program starts or stops the camera, its switch is disabled and clicks are dropped.
    WaitUntil([&] { return (control = Find(name)) && (control->state & STATE_SYSTEM_UNAVAILABLE) == 0; });
    if (!control)
        throw std::runtime_error("no such control to click on");
    const RECT& r = control->screenPx;
    ClickAt({(r.left + r.right) / 2, (r.top + r.bottom) / 2});
}

void Program::Wheel(int notches) const {
    SendMouse(MOUSEEVENTF_WHEEL, notches * WHEEL_DELTA);
}

bool Program::Reveal(const std::wstring& name) const {
    RECT client = {};
    GetClientRect(window_, &client);
    const int dpi = MulDiv(client.right, 96, kWindowWidthDip);
    const auto toPx = [dpi](int dip) { return MulDiv(dip, dpi, 96); };
    // Beside the cards: over a slider the wheel would move it.
    POINT margin{client.right - toPx(12), client.bottom / 2};
    ClientToScreen(window_, &margin);
    return WaitUntil([&] {
        const RECT rect = ClientRect(name);
        if (IsRectEmpty(&rect))
            return false;
        const bool above = rect.top < toPx(kEffectsTopDip);
        const bool below = rect.bottom > client.bottom - toPx(kEffectsBottomDip);
        if (above == below)
            return true;
        MoveTo(margin);
        Wheel(above ? 1 : -1);
        return false;
    });
}

std::optional<std::wstring> Program::TakeMessage() const {
    std::optional<AccessibleControl> text;
    std::optional<AccessibleControl> button;
    HWND box = nullptr;
    // It may be visible before its controls have their places, and so are found.
    WaitUntil([&] {
        box = FindWindowW(kMessageClass, nullptr);
        if (!box || !IsWindowVisible(box))
            return false;
        const AccessibleWindow content(box);
        text = content.Find(L"msgbox_content");
        button = content.Find(L"msg_ok_btn");
        return text && button;
    });
    if (!text || !button || CountWindows(kMessageClass) != 1 || !AccessibleWindow(box).Press(button->id) ||
        !WaitUntil([] { return CountWindows(kMessageClass) == 0; })) {
        return std::nullopt;
    }
    return text->name;
}

void Program::PressKey(WORD key, bool alt) const {
    if (alt)
        SendKey(VK_MENU, 0);
    SendKey(key, 0);
    SendKey(key, KEYEVENTF_KEYUP);
    if (alt)
        SendKey(VK_MENU, KEYEVENTF_KEYUP);
}

std::vector<DWORD> Program::Pixels(SIZE& sizePx) const {
    std::vector<DWORD> pixels = Grab(window_, sizePx);
    for (DWORD& pixel : pixels)
        pixel &= 0xFFFFFF;
    return pixels;
}

COLORREF Program::PixelAt(int xPx, int yPx) const {
    RECT client = {};
    GetClientRect(window_, &client);
    if (!PtInRect(&client, {xPx, yPx}))
        return CLR_INVALID;
    return Grab(window_, {xPx, yPx, xPx + 1, yPx + 1}).front() & 0xFFFFFF;
}

std::string Program::InputState() const {
    const auto tell = [](HWND window) {
        wchar_t name[64] = {};
        wchar_t title[64] = {};
        GetClassNameW(window, name, 64);
        GetWindowTextW(window, title, 64);
        return testing::PrintToString(std::wstring(name)) + " " + testing::PrintToString(std::wstring(title));
    };
    POINT pointer = {};
    GetCursorPos(&pointer);
    RECT clip = {};
    GetClipCursor(&clip);
    GUITHREADINFO thread = {};
    thread.cbSize = sizeof(thread);
    GetGUIThreadInfo(GetWindowThreadProcessId(window_, nullptr), &thread);
    std::ostringstream text;
    text << (IsWindowEnabled(window_) ? "enabled" : "disabled") << ", in front " << tell(GetForegroundWindow())
         << ", popup " << tell(GetLastActivePopup(window_)) << ", below the pointer " << tell(WindowFromPoint(pointer))
         << " at " << pointer.x << "," << pointer.y << " within " << clip.left << "," << clip.top << "," << clip.right
         << "," << clip.bottom << ", capture " << tell(thread.hwndCapture) << ", focus " << tell(thread.hwndFocus)
         << ", state " << thread.flags;
    const auto list = [&](HWND window) {
        text << "; " << tell(window) << (IsWindowVisible(window) ? " shown" : " hidden")
             << (IsWindowEnabled(window) ? "" : " disabled")
             << (GetWindow(window, GW_OWNER) == window_ ? " owned" : "");
    };
    std::function<void(HWND)> each = list;
    EnumThreadWindows(
        GetWindowThreadProcessId(window_, nullptr),
        [](HWND window, LPARAM parameter) -> BOOL {
            (*reinterpret_cast<std::function<void(HWND)>*>(parameter))(window);
            return TRUE;
        },
        reinterpret_cast<LPARAM>(&each));
    return text.str();
}

bool Program::Screenshot(const std::wstring& name, int moreColorsThan) const {
    SIZE size = {};
    std::vector<DWORD> pixels;
    // The window may have painted and the system's screen not yet show it.
    const bool shown = WaitUntil([&] {
        pixels = Grab(window_, size);
        std::set<DWORD> colors;
        return std::any_of(pixels.begin(), pixels.end(), [&](DWORD pixel) {
            colors.insert(pixel);
            return static_cast<int>(colors.size()) > moreColorsThan;
        });
    });
    const std::wstring folder = ProgramFolder() + L"..\\..\\screenshots\\";
    CreateDirectoryW(folder.c_str(), nullptr);
    WritePng(folder + name + L".png", pixels, size.cx, size.cy);
    return shown;
}

int CountWindows(const wchar_t* className) {
    const std::vector<HWND> windows = harness::TopLevelWindows(className);
    return static_cast<int>(std::count_if(windows.begin(), windows.end(), IsWindowVisible));
}

}  // namespace e2e
