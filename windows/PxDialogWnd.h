#pragma once
// The small message window that is shown instead of the settings: one localised text, whose links open in the user's
// default program. It closes by its button, and when the camera service says so over the pipe.
//
// Layout: a text "msgbox_content" and a button "closebtn".
// Threads: UI thread; OnMessageReceive runs on the pipe client's thread and only posts.
#include <windows.h>

#include <cstdint>
#include <memory>
#include <string>

#include "DuiLib/WindowImplBase.h"
#include "suite/ipc/IPCMessageClient.h"

class PxDialogWnd : public DuiLib::WindowImplBase {
  public:
    PxDialogWnd();
    ~PxDialogWnd() override;

    // Prepares everything but the text: DPI, paths, language, window, link to the service.
    void Run(HINSTANCE instance);
    // The message carries markup and a link: its text no longer drags the window.
    void UseHtmlMessage();
    // Shows the window with that text and runs the message loop; returns when the window has closed.
    void SetMessageText(const std::wstring& text);
    // Brings the window of the instance that runs already to the front.
    void ActivateExisting();

    void Notify(DuiLib::TNotifyUI& msg) override;

  protected:
    const wchar_t* GetWindowClassName() const override;
    std::wstring GetSkinFile() const override { return L"layout\\PixoraDialogWnd.xml"; }
    LRESULT HandleMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
    void OnClick(DuiLib::TNotifyUI& msg) override;
    LRESULT OnDestroy(WPARAM wParam, LPARAM lParam, bool& handled) override;

  private:
    struct PostSender {
        std::int32_t senderId;
        IPCMessageClient* client;  // borrowed
    };

    void InitIPCMessageClient();
    void OnMessageReceive(const TagIPCMessageItem& item);

    std::unique_ptr<IPCMessageClient> client_;  // stopped before the rest of the window goes
    std::unique_ptr<PostSender> postSender_;
    bool closing_ = false;  // the pipe client's thread
};
