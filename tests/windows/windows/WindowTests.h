#pragma once
// What the tests of the windows share: the settings window, a plain window that owns popups, and recorders of what
// windows say. Thread: the test's.
#include <windows.h>

#include <map>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "pages/HomePage.h"
#include "service/KindNotifier.h"
#include "tests/windows/support/ProgramTest.h"
#include "windows/PxMainWnd.h"

// What is published on a channel while it lives.
template <typename Kind>
class HubRecorder {
  public:
    explicit HubRecorder(std::int32_t channel) : channel_(channel) {
        id_ = Hub().Subscribe(channel_, [this](Kind& kind) { kinds_.push_back(kind); });
    }
    ~HubRecorder() { Hub().Unsubscribe(channel_, id_); }
    HubRecorder(const HubRecorder&) = delete;
    HubRecorder& operator=(const HubRecorder&) = delete;

    const std::vector<Kind>& Kinds() const { return kinds_; }

  private:
    static KindNotifier<Kind>& Hub() { return KindNotifier<Kind>::GetInstance(); }

    const std::int32_t channel_;
    std::int64_t id_ = 0;
    std::vector<Kind> kinds_;
};

// The messages that a window's own handler passes on to its base.
class PassedOnMessages final : public DuiLib::IMessageFilterUI {
  public:
    explicit PassedOnMessages(DuiLib::CPaintManagerUI& manager) : manager_(manager) { manager_.AddMessageFilter(this); }
    ~PassedOnMessages() { manager_.RemoveMessageFilter(this); }

    bool FilterMessage(UINT message, WPARAM wParam, LPARAM, LRESULT&) override {
        ++counts_[{message, wParam}];
        return false;
    }
    int Count(UINT message, WPARAM wParam) const {
        const auto found = counts_.find({message, wParam});
        return found == counts_.end() ? 0 : found->second;
    }
    int Count(UINT message) const;

  private:
    DuiLib::CPaintManagerUI& manager_;
    std::map<std::pair<UINT, WPARAM>, int> counts_;
};

// A window with the settings window's layout and nothing else, for popups that need an owner.
class OwnerWindow : public DuiLib::WindowImplBase {
  public:
    OwnerWindow();

    DuiLib::CControlUI& Control(const wchar_t* name) { return *PaintManager().FindControl(name); }

  protected:
    const wchar_t* GetWindowClassName() const override { return L"PixoraTestOwner"; }
    std::wstring GetSkinFile() const override { return L"layout\\Pixora.xml"; }
};

// The settings window, with a look at what reaches its base class.
class MainWindow : public PxMainWnd {
  public:
    void Notify(DuiLib::TNotifyUI& msg) override;

    // Clicks of that control are counted and go no further.
    void CountClicksOf(const std::wstring& name) { counted_ = name; }
    int Clicks() const { return clicks_; }
    // "valuechanged" and "movevaluechanged" of controls outside the pages that came to the base's handler map.
    const std::vector<std::wstring>& BaseNotifications() const { return baseNotifications_; }

  protected:
    const NotifyMap& GetMessageMap() const override;

  private:
    void OnAny(DuiLib::TNotifyUI& msg) {
        baseNotifications_.push_back(msg.type + L" " + (msg.sender ? msg.sender->GetName() : L"-"));
    }

    std::wstring counted_;
    int clicks_ = 0;
    std::vector<std::wstring> baseNotifications_;
};

// Each test has a settings window of its own, opened as the program opens it.
class MainWindowTest : public ProgramTest {
  protected:
    void SetUp() override;
    void TearDown() override;

    static MainWindow& Window();
    static DuiLib::CPaintManagerUI& Manager() { return Window().PaintManager(); }
    static HomePage& Home();
    template <typename Class = DuiLib::CControlUI>
    static Class& Control(const std::wstring& name) {
        auto* control = Manager().FindControlAs<Class>(name);
        if (!control)
            throw std::runtime_error("no such control: " + std::string(name.begin(), name.end()));
        return *control;
    }
    // Scrolls the control into sight, and arranges what changed.
    static void Reveal(const std::wstring& name);
    // Closes the window as the end of the program does.
    static void Destroy();
    static bool Exists();
};
