#pragma once
// What the library's tests share: a window over a layout that is given as text, which records its notifications;
// message pumping with a deadline; a folder of resources for the process; the level 4 lines of the log.
#include <gmock/gmock.h>
#include <windows.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "DuiLib/ControlUI.h"
#include "DuiLib/PaintManagerUI.h"
#include "DuiLib/Theme.h"
#include "DuiLib/WindowImplBase.h"
#include "tests/support/TestLog.h"
#include "tests/support/Wait.h"

namespace DuiLib::Test {

using harness::PumpUntil;
// Runs the messages that are there, and those that they bring.
inline void PumpPending() {
    harness::Pump();
}

// GDI objects of the process. Wine does not count them, but finds them by the index that is the low half of a handle.
inline int GdiObjectCount() {
    if (const DWORD counted = GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS)) {
        return static_cast<int>(counted);
    }
    int count = 0;
    for (ULONG_PTR index = 1; index <= 0xFFFF; ++index) {
        count += GetObjectType(reinterpret_cast<HGDIOBJ>(index)) != 0 ? 1 : 0;
    }
    return count;
}

// The process's resource folder below the temporary folder, removed at the end.
class ResourceFolder {
  public:
    static ResourceFolder& Get() {
        static ResourceFolder folder;
        return folder;
    }
    std::wstring Path() const { return path_.wstring() + L"\\"; }
    void Write(const std::wstring& name, std::string_view content) const {
        const std::filesystem::path file = path_ / name;
        std::filesystem::create_directories(file.parent_path());
        std::ofstream(file, std::ios::binary) << content;
    }
    // The program's own themes.xml, with more elements at its end.
    void WriteThemes(std::string_view more = {}) const {
        wchar_t program[MAX_PATH]{};
        GetModuleFileNameW(nullptr, program, MAX_PATH);
        std::ifstream file(std::filesystem::path(program).parent_path() / "testdata" / "duilib" / "themes.xml");
        std::string themes{std::istreambuf_iterator<char>(file), {}};
        themes.insert(themes.rfind("</Themes>"), more);
        Write(L"themes.xml", themes);
        UITheme::GetInstance()->ForgetFile();
    }

  private:
    ResourceFolder() {
        wchar_t temp[MAX_PATH]{};
        GetTempPathW(MAX_PATH, temp);
        path_ = std::filesystem::path(temp) / (L"duilib_tests_" + std::to_wstring(GetCurrentProcessId()));
        std::filesystem::create_directories(path_);
        CPaintManagerUI::SetInstance(GetModuleHandleW(nullptr));
        CPaintManagerUI::SetResourcePath(Path());
        WriteThemes();
    }
    ~ResourceFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }

    std::filesystem::path path_;
};

// The failures that were logged since it was made and that the test looks at; one that it does not look at fails it.
class LogWatch {
  public:
    LogWatch() { ExpectNone(); }
    // Those of them that nobody has taken yet.
    std::vector<std::string> Failures() {
        for (std::string& line : harness::TestLog::TakeFailures()) {
            failures_.push_back(std::move(line));
        }
        return failures_;
    }
    // True when some failure holds the text.
    bool Has(std::string_view text) {
        for (const std::string& line : Failures()) {
            if (line.find(text) != std::string::npos) {
                return true;
            }
        }
        return false;
    }
    void ExpectNone() { EXPECT_THAT(Failures(), testing::IsEmpty()); }

  private:
    std::vector<std::string> failures_;
};

class TestWindow : public WindowImplBase {
  public:
    // The layout's text is UTF-8. The window is created, not shown.
    explicit TestWindow(std::string_view layout, DWORD style = WS_POPUP | WS_BORDER | WS_SYSMENU | WS_MINIMIZEBOX,
                        HWND parent = nullptr) {
        static int count = 0;
        skinFile_ = L"layout\\test" + std::to_wstring(++count) + L".xml";
        ResourceFolder::Get().Write(skinFile_, layout);
        style_ = style;
        Create(parent, L"Test window", style, 0);
    }
    ~TestWindow() override {
        if (GetHWND() != nullptr) {
            DestroyWindow(GetHWND());
        }
    }

    void Notify(TNotifyUI& msg) override {
        notifications.push_back(msg.type + L" " + (msg.sender != nullptr ? msg.sender->GetName() : L""));
        if (onNotify) {
            onNotify(msg);
        }
        WindowImplBase::Notify(msg);
    }

    template <typename Class = CControlUI>
    Class& Find(const wchar_t* name) {
        PaintManager().UpdateLayout();
        auto* const control = PaintManager().FindControlAs<Class>(name);
        if (control == nullptr) {
            throw std::runtime_error("no such control");
        }
        return *control;
    }
    Point CenterOf(const wchar_t* name) {
        const Rect& px = Find(name).GetPos();
        return {(px.left + px.right) / 2, (px.top + px.bottom) / 2};
    }

    // Mouse and key messages as the system sends them.
    void Mouse(UINT message, Point px, WPARAM keys = 0) { SendMessage(message, keys, MAKELPARAM(px.x, px.y)); }
    void Click(const wchar_t* name) {
        const Point px = CenterOf(name);
        Mouse(WM_MOUSEMOVE, px);
        Mouse(WM_LBUTTONDOWN, px, MK_LBUTTON);
        Mouse(WM_LBUTTONUP, px);
    }
    void Key(WORD key) {
        SendMessage(WM_KEYDOWN, key, 1);
        SendMessage(WM_KEYUP, key, static_cast<LPARAM>(0xC0000001));
    }

    bool Got(const std::wstring& notification) const {
        return std::find(notifications.begin(), notifications.end(), notification) != notifications.end();
    }
    int Count(const std::wstring& notification) const {
        return static_cast<int>(std::count(notifications.begin(), notifications.end(), notification));
    }

    std::vector<std::wstring> notifications;  // "type name"
    std::function<void(TNotifyUI&)> onNotify;

  protected:
    const wchar_t* GetWindowClassName() const override { return L"DuiLib test window"; }
    std::wstring GetSkinFile() const override { return skinFile_; }

  private:
    std::wstring skinFile_;
    DWORD style_ = 0;
};

}  // namespace DuiLib::Test
