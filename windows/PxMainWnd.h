#pragma once
// The settings window: owns the pages and shows them in its tab container, and turns the window's events into
// publications on the notification hub.
//
// Layout: the tab container "wnd_container", the buttons "minbtn" and "closebtn", the dimming layer "mask_control".
// Threads: UI thread, but for the operations of PageHost that may be called from any thread.
#include <windows.h>

#include <shellapi.h>

#include <atomic>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "DuiLib/WindowImplBase.h"
#include "pages/PageBase.h"
#include "windows/ModalQueue.h"
#include "windows/PageSwitcher.h"
#include "windows/VideoThumbnail.h"

class PxMainWnd : public DuiLib::WindowImplBase, public PageHost {
  public:
    PxMainWnd();
    ~PxMainWnd() override;

    // Opens the window and runs the message loop until it ends.
    void Run(HINSTANCE instance);
    // Prepares the process (DPI, paths, language), makes the window and shows it.
    void Open(HINSTANCE instance);
    // Brings the window of the instance that runs already to the front.
    void ActivateExisting();

    // Takes the page under its name; an earlier one of that name goes.
    void AddPage(const std::wstring& name, std::unique_ptr<PageBase> page);
    PageBase* FindPage(const std::wstring& name) const;

    // --- INotifyUI
    void Notify(DuiLib::TNotifyUI& msg) override;

    // --- PageHost
    void ShowPage(const std::wstring& name, int flag) override;
    void ShowFirstPage() override;
    void CloseWindow() override;
    void ShowMessage(GlobalUtils::MessageBoxKind kind) override;
    void AskForDeletion(const std::wstring& itemName) override;
    void ShowLimitNotice() override;
    HintWindow* GetHint(Hint hint) override;
    HWND GetWindow() const override { return GetHWND(); }

  protected:
    const wchar_t* GetWindowClassName() const override;
    std::wstring GetSkinFile() const override { return L"layout\\Pixora.xml"; }
    LRESULT HandleMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
    void InitWindow() override;
    void OnClick(DuiLib::TNotifyUI& msg) override;
    LRESULT OnDestroy(WPARAM wParam, LPARAM lParam, bool& handled) override;
    LRESULT OnKillFocus(WPARAM wParam, LPARAM lParam, bool& handled) override;
    LRESULT OnLButtonUp(WPARAM wParam, LPARAM lParam, bool& handled) override;
    void OnFitted() override;

  private:
    void ShowTab(const std::wstring& name);
    void QueueModal(std::int32_t key, std::function<void()> show);
    // Asks for the session's messages; they come to the window that has the class's name.
    void RegisterForSession();
    void RegisterVideoThumbnail();
    void OnFilesDropped(HDROP drop);
    void TrackHover(LPARAM lParam);
    // The pages measure their texts again.
    void TellScale();
    void PublishMove();
    // The preview's window, which stands over this one, has to follow.
    static void PublishPlace();
    static void PublishPower(WPARAM event);

    std::map<std::wstring, std::unique_ptr<PageBase>> pages_;
    std::vector<std::wstring> virtualWndNames_;  // pages that this window's pump knows
    std::unique_ptr<PageSwitcher> switcher_;
    std::atomic<bool> closing_ = false;  // any thread
    VideoThumbnail thumbnail_;
    ModalQueue modals_;
};
